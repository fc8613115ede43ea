
#include <ORLFoundation/platform/defaults/internal/DefaultsValues.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <cstdlib>

namespace ORLFoundation::internal {
namespace {

/// The user's home without a slash at its end; "" when it is not known.
std::string home() {
  const char* value = ::getenv("HOME");
  std::string path = value != nullptr && value[0] == '/' ? value : "";
  while (path.ends_with('/')) path.pop_back();
  return path;
}

}  // namespace

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
