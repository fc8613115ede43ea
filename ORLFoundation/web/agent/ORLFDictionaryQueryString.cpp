
#include <ORLFoundation/web/agent/ORLFDictionaryQueryString.h>

#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/text/NSStringPercentEncoding.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

struct Style {
  std::shared_ptr<NSCharacterSet> allowed;
  bool writesNumbers;
  bool joins;

  [[nodiscard]] std::string encoded(std::string_view text) const {
    return stringByAddingPercentEncodingWithAllowedCharacters(text, *allowed);
  }
};

Style styleOf(NSUInteger options) {
  const bool joins = (options & ORLFURLQueryStringJoinsWithCommas) != 0;
  std::string removed = (options & ORLFURLQueryStringEscapesPlus) != 0 ? "+" : "";
  if (joins) removed += ",";
  const auto& all = URLQueryAllowedCharacterSet();
  if (removed.empty()) return {all, true, joins};
  return {all->invertedSet()->setByAddingCharactersInString(removed)->invertedSet(), true, joins};
}

/// The members of an array or a set; nil for any other value.
std::optional<std::vector<id>> membersOf(const id& value) {
  if (const auto array = value.as<NSArray>()) return array->members();
  if (const auto set = value.as<NSSet>()) return set->allObjects();
  return std::nullopt;
}

/// The text of a single value; nil for one that gives nothing.
std::optional<std::string> textOf(const id& value, const Style& style) {
  if (const auto* text = value.get<std::string>()) return style.encoded(*text);
  const auto* number = value.get<NSNumber>();
  if (number && style.writesNumbers) return style.encoded(number->stringValue());
  const auto* data = value.get<NSData>();
  const auto text = data ? orlfStringWithData(*data, NSUTF8StringEncoding) : std::nullopt;
  return text ? std::optional(style.encoded(*text)) : std::nullopt;
}

void appendPart(std::string& query, std::string_view key, std::string_view value) {
  if (!query.empty()) query += '&';
  query.append(key).append("=").append(value);
}

std::string joined(const std::vector<id>& members, const Style& style) {
  std::string text;
  for (const id& member : members) {
    if (!member.isIdenticalTo(members.front())) text += ',';
    text += textOf(member, style).value_or("");
  }
  return text;
}

void appendValue(std::string& query, const std::string& key, const id& value, const Style& style) {
  const auto members = membersOf(value);
  if (members && style.joins) {
    if (!members->empty()) appendPart(query, key, joined(*members, style));
    return;
  }
  for (const id& member : members.value_or(std::vector{value}))
    if (const auto text = textOf(member, style)) appendPart(query, key, *text);
}

std::string queryOf(const NSDictionary& dictionary, const Style& style) {
  std::vector<std::pair<std::string, id>> entries;
  for (const auto& [key, value] : dictionary.entries())
    if (const auto* text = key.get<std::string>()) entries.emplace_back(*text, value);
  std::stable_sort(entries.begin(), entries.end(), [](const auto& one, const auto& other) {
    return compare(one.first, other.first) == NSOrderedAscending;
  });
  std::string query;
  for (const auto& [key, value] : entries) appendValue(query, style.encoded(key), value, style);
  return query;
}

void addValue(NSMutableDictionary& dictionary, const std::string& key, std::string value) {
  const id present = dictionary.objectForKey(key);
  if (const auto values = present.as<NSMutableSet>()) return values->addObject(std::move(value));
  if (!present) return dictionary.setObject(std::move(value), key);
  dictionary.setObject(std::make_shared<NSMutableSet>(std::vector<id>{present, std::move(value)}),
                       key);
}

}  // namespace

std::shared_ptr<NSDictionary> orlfDictionaryWithURLQueryString(std::string_view queryString) {
  auto dictionary = std::make_shared<NSMutableDictionary>();
  while (!queryString.empty()) {
    const std::string_view part = queryString.substr(0, queryString.find('&'));
    queryString.remove_prefix(std::min(queryString.size(), part.size() + 1));
    const std::size_t sign = part.find('=');
    if (sign == std::string_view::npos) continue;
    const auto key = stringByRemovingPercentEncoding(part.substr(0, sign));
    auto value = stringByRemovingPercentEncoding(part.substr(sign + 1));
    if (key && value) addValue(*dictionary, *key, *std::move(value));
  }
  return dictionary;
}

std::string orlfURLQueryString(const NSDictionary& dictionary) {
  return queryOf(dictionary, {URLQueryAllowedCharacterSet(), false, false});
}

std::string orlfURLQueryStringWithOptions(const NSDictionary& dictionary, NSUInteger options) {
  return queryOf(dictionary, styleOf(options));
}

std::shared_ptr<NSDictionary> orlfDictionaryByAddingContentsOfDictionary(
    const NSDictionary& dictionary, const std::shared_ptr<NSDictionary>& contentsOfDictionary) {
  NSDictionary::Entries entries = dictionary.entries();
  if (contentsOfDictionary)
    for (auto& entry : contentsOfDictionary->entries()) entries.push_back(std::move(entry));
  return std::make_shared<NSDictionary>(entries);
}

std::shared_ptr<NSDictionary> orlfDictionaryByRemovingObjectsForKeys(
    const NSDictionary& dictionary, const std::shared_ptr<NSArray>& keys) {
  auto rest = std::make_shared<NSMutableDictionary>(dictionary.entries());
  if (keys)
    for (const id& key : *keys) rest->removeObjectForKey(key);
  return std::make_shared<NSDictionary>(rest->entries());
}

}  // namespace ORLFoundation
