
#include <ORLFoundation/platform/predicate/internal/PredicateNode.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/predicate/internal/PredicateWords.h>

#include <algorithm>
#include <iterator>

namespace ORLFoundation::internal::predicate {
namespace {

constexpr std::string_view kSelf = "self";

std::string quoted(std::string_view text) {
  constexpr std::string_view kEscaped = "\"\\\n\r\t";
  constexpr std::string_view kNames = "\"\\nrt";
  std::string result = "\"";
  for (const char c : text) {
    const std::size_t place = kEscaped.find(c);
    if (place != kEscaped.npos) result += '\\';
    result += place == kEscaped.npos ? c : kNames[place];
  }
  return result + "\"";
}

std::string textOfConstant(const id& value) {
  if (value.isNil()) return "nil";
  if (const auto* text = value.get<std::string>()) return quoted(*text);
  if (const auto* date = value.get<NSDate>())
    return stringWithFormat("CAST(%f, \"NSDate\")", date->timeIntervalSinceReferenceDate());
  if (const auto array = value.as<NSArray>()) {
    PredicateExpression::List members;
    for (const id& member : *array) members.push_back({member});
    return PredicateExpression{members}.text();
  }
  return value.description();
}

std::string textOfKeyPath(const std::string& path) {
  const bool isSelf = base::equalsLower(path, kSelf);
  const bool isWord = predicateWord(path).has_value() || predicateOperator(path).has_value();
  return isWord && !isSelf ? "#" + path : path;
}

std::string textOfList(const PredicateExpression::List& list) {
  std::string text = "{";
  for (const PredicateExpression& member : list)
    text += (text.size() > 1 ? ", " : "") + member.text();
  return text + "}";
}

id valueAt(const id& object, std::string_view path) {
  if (base::equalsLower(path, kSelf)) return object;
  if (path.size() > kSelf.size() && path[kSelf.size()] == '.' &&
      base::equalsLower(path.substr(0, kSelf.size()), kSelf))
    path.remove_prefix(kSelf.size() + 1);
  return object.valueForKeyPath(path);
}

id listOf(const PredicateExpression::List& list, const id& object) {
  std::vector<id> values;
  for (const PredicateExpression& member : list) {
    id value = member.evaluate(object);
    values.push_back(value.isNil() ? id(NSNull()) : std::move(value));
  }
  return std::make_shared<NSArray>(std::move(values));
}

std::string_view textOf(PredicateQuantifier quantifier) {
  constexpr std::string_view kTexts[] = {"", "ANY ", "ALL ", "NONE "};
  return kTexts[static_cast<std::size_t>(quantifier)];
}

}  // namespace

id PredicateExpression::evaluate(const id& object) const {
  if (const auto* path = std::get_if<KeyPath>(&value)) return valueAt(object, path->path);
  if (const auto* list = std::get_if<List>(&value)) return listOf(*list, object);
  return std::get<id>(value);
}

std::string PredicateExpression::text() const {
  if (const auto* path = std::get_if<KeyPath>(&value)) return textOfKeyPath(path->path);
  if (const auto* list = std::get_if<List>(&value)) return textOfList(*list);
  return textOfConstant(std::get<id>(value));
}

bool CompoundPredicate::matches(const id& object) const {
  const auto matchesObject = [&object](const PredicateNodePointer& member) {
    return member->matches(object);
  };
  return kind_ == Kind::And ? std::all_of(members_.begin(), members_.end(), matchesObject)
                            : std::any_of(members_.begin(), members_.end(), matchesObject);
}

std::string CompoundPredicate::text() const {
  std::string text;
  for (const PredicateNodePointer& member : members_) {
    if (!text.empty()) text += kind_ == Kind::And ? " AND " : " OR ";
    text += member->innerText();
  }
  return text;
}

std::string ComparisonPredicate::text() const {
  std::string text(textOf(comparison_.quantifier));
  text += comparison_.left.text() + " ";
  text += textOf(comparison_.comparison);
  if (!comparison_.modifiers.empty()) text += "[" + comparison_.modifiers + "]";
  return text + " " + comparison_.right.text();
}

}  // namespace ORLFoundation::internal::predicate
