
#include <ORLFoundation/platform/object/internal/CollectionOperators.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <string>
#include <utility>

namespace ORLFoundation::internal::object {
namespace {

using Values = std::vector<id>;

NSDecimal sumOf(const Values& values) {
  NSDecimal sum;
  for (const id& value : values)
    if (const auto* number = value.get<NSNumber>())
      sum = NSDecimalAdd(sum, number->decimalValue()).value;
  return sum;
}

/// false for values of different kinds, which then keep their order.
bool isBefore(const id& left, const id& right) {
  if (const auto* number = left.get<NSNumber>(); number && right.get<NSNumber>())
    return number->compare(*right.get<NSNumber>()) == NSOrderedAscending;
  if (const auto* date = left.get<NSDate>(); date && right.get<NSDate>())
    return date->compare(*right.get<NSDate>()) == NSOrderedAscending;
  if (const auto* text = left.get<std::string>(); text && right.get<std::string>())
    return *text < *right.get<std::string>();
  return false;
}

id sum(const Values& values) { return sumOf(values); }
id average(const Values& values) {
  if (values.empty()) return NSDecimal::zero();
  return NSDecimalDivide(sumOf(values), NSDecimal::fromUnsigned(values.size())).value;
}
id largest(const Values& values) {
  return values.empty() ? id() : *std::ranges::max_element(values, isBefore);
}
id smallest(const Values& values) {
  return values.empty() ? id() : *std::ranges::min_element(values, isBefore);
}
id unionOfObjects(const Values& values) { return std::make_shared<NSArray>(values); }
id distinctUnionOfObjects(const Values& values) {
  return std::make_shared<NSArray>(NSSet(values).allObjects());
}

struct Operator {
  std::string_view name;
  id (*apply)(const Values& values);
};

const Operator kOperators[] = {
    {"@sum", sum},
    {"@avg", average},
    {"@max", largest},
    {"@min", smallest},
    {"@unionOfObjects", unionOfObjects},
    {"@distinctUnionOfObjects", distinctUnionOfObjects},
};

[[noreturn]] void raise(std::string_view name, const char* reason) {
  throw NSException(NSInvalidArgumentException, std::string(name) + reason);
}

/// The members' values for a key path, nil and `NSNull` left out.
Values valuesOf(const Values& members, std::string_view keyPath) {
  Values values;
  for (const id& member : members) {
    id value = member.valueForKeyPath(keyPath);
    if (value && !value.isNull()) values.push_back(std::move(value));
  }
  return values;
}

}  // namespace

id applyCollectionOperator(const std::vector<id>& members, std::string_view keyPath) {
  const auto point = keyPath.find('.');
  const std::string_view name = keyPath.substr(0, point);
  if (name == "@count") return members.size();
  const auto* found = std::ranges::find(kOperators, name, &Operator::name);
  if (found == std::end(kOperators)) raise(name, " is no operator of a collection");
  if (point == keyPath.npos) raise(name, " needs a key path after it");
  return found->apply(valuesOf(members, keyPath.substr(point + 1)));
}

}  // namespace ORLFoundation::internal::object
