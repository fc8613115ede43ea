#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/defaults/internal/DefaultsValues.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>

namespace ORLFoundation::internal {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

std::string_view withoutSign(std::string_view text) {
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  return text;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The user's home without a slash at its end; "" when it is not known.
std::string home() {
  const char* value = ::getenv("HOME");
  std::string path = value != nullptr && value[0] == '/' ? value : "";
  while (path.ends_with('/')) path.pop_back();
  return path;
}

}  // namespace

bool boolValueOfText(std::string_view text) {
  text = withoutSign(withoutBlanks(text));
  const auto start = text.find_first_not_of('0');
  if (start == text.npos) return false;
  return std::string_view("YyTt123456789").find(text[start]) != std::string_view::npos;
}

double doubleValueOfText(const std::string& text) {
  // No locale of the process, and none of the forms that strtod takes beside decimal numbers.
  static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
  const std::string_view digits = withoutSign(withoutBlanks(text));
  const bool isNumber = digits.size() > (digits.starts_with('.') ? 1 : 0) &&
                        isDigit(digits[digits.starts_with('.') ? 1 : 0]);
  if (!isNumber || digits.starts_with("0x") || digits.starts_with("0X")) return 0;
  return ::strtod_l(text.c_str(), nullptr, plain);
}

id immutableCopy(const id& value) {
  if (const auto array = value.as<NSArray>()) {
    std::vector<id> members;
    members.reserve(array->count());
    for (const id& member : *array) members.push_back(immutableCopy(member));
    return std::make_shared<NSArray>(std::move(members));
  }
  if (const auto dictionary = value.as<NSDictionary>()) {
    NSDictionary::Entries entries = dictionary->entries();
    for (auto& [key, member] : entries) member = immutableCopy(member);
    return std::make_shared<NSDictionary>(entries);
  }
  return value;
}

id valueOfAddress(const NSURL& url) {
  if (!url.isFileURL()) return NSKeyedArchiver::archivedDataWithRootObject(url, true);
  std::string path = url.path();
  const std::string start = home();
  if (!start.empty() && (path == start || path.starts_with(start + "/")))
    path.replace(0, start.size(), "~");
  return path;
}

std::optional<NSURL> addressOfValue(const id& value) {
  if (const auto* data = value.get<NSData>())
    return NSKeyedUnarchiver::unarchivedObjectOfClass<NSURL>(*data);
  const auto* path = value.get<std::string>();
  if (!path || path->empty()) return std::nullopt;
  if (*path == "~" || path->starts_with("~/"))
    return NSURL::fileURLWithPath(home() + path->substr(1));
  return NSURL::fileURLWithPath(*path);
}

}  // namespace ORLFoundation::internal
