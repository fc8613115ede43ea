
#include <ORLFoundation/platform/defaults/internal/DefaultsValues.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace ORLFoundation::internal::defaults {
namespace {

/// The user's home without a slash at its end; "" when it is not known.
std::string home() {
  const char* value = ::getenv("HOME");
  std::string path = value != nullptr && value[0] == '/' ? value : "";
  while (path.ends_with('/')) path.pop_back();
  return path;
}

/// Property lists have one kind of whole numbers.
NSNumber::Kind keptKind(const NSNumber& number) {
  return number.kind() == NSNumber::Kind::UnsignedInteger ? NSNumber::Kind::Integer : number.kind();
}

bool isSameNumber(const NSNumber& left, const NSNumber& right) {
  return keptKind(left) == keptKind(right) && left == right &&
         std::signbit(left.doubleValue()) == std::signbit(right.doubleValue());
}

bool areSameMembers(const NSArray& left, const NSArray& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSameValue);
}

bool areSameEntries(const NSDictionary& left, const NSDictionary& right) {
  const NSDictionary::Entries entries = left.entries();
  return left.count() == right.count() &&
         std::all_of(entries.begin(), entries.end(), [&](const auto& entry) {
           return isSameValue(entry.second, right.objectForKey(entry.first));
         });
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

bool isSameValue(const id& left, const id& right) {
  const auto *number = left.get<NSNumber>(), *otherNumber = right.get<NSNumber>();
  if (number != nullptr && otherNumber != nullptr) return isSameNumber(*number, *otherNumber);
  const auto array = left.as<NSArray>(), otherArray = right.as<NSArray>();
  if (array && otherArray) return areSameMembers(*array, *otherArray);
  const auto dictionary = left.as<NSDictionary>(), otherDictionary = right.as<NSDictionary>();
  if (dictionary && otherDictionary) return areSameEntries(*dictionary, *otherDictionary);
  return left == right;
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

}  // namespace ORLFoundation::internal::defaults
