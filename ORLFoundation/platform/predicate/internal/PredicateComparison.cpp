// How the comparisons of predicates answer for two values.
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/predicate/internal/PredicateNode.h>
#include <ORLFoundation/platform/predicate/internal/PredicatePatterns.h>
#include <ORLFoundation/platform/predicate/internal/PredicateWords.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <optional>

namespace ORLFoundation::internal::predicate {
namespace {

[[noreturn]] void raise(const std::string& reason) {
  throw NSException(NSInvalidArgumentException, reason);
}

bool equal(const id& left, const id& right, NSUInteger options) {
  const auto* leftText = left.get<std::string>();
  const auto* rightText = right.get<std::string>();
  if (leftText != nullptr && rightText != nullptr)
    return compare(*leftText, *rightText, options) == NSOrderedSame;
  return left.isEqual(right);
}

NSComparisonResult order(const id& left, const id& right, NSUInteger options) {
  const auto* text = left.get<std::string>();
  if (const auto* other = right.get<std::string>(); text != nullptr && other != nullptr)
    return compare(*text, *other, options);
  const auto* number = left.get<NSNumber>();
  if (const auto* other = right.get<NSNumber>(); number != nullptr && other != nullptr)
    return number->compare(*other);
  const auto* date = left.get<NSDate>();
  if (const auto* other = right.get<NSDate>(); date != nullptr && other != nullptr)
    return date->compare(*other);
  raise("Can't compare " + left.description() + " with " + right.description() +
        "; they have no order.");
}

/// The members of an array or a set, the values of a dictionary; nil for anything else.
std::optional<std::vector<id>> membersOf(const id& value) {
  if (const auto array = value.as<NSArray>()) return array->members();
  if (const auto set = value.as<NSSet>()) return set->allObjects();
  if (const auto dictionary = value.as<NSDictionary>()) return dictionary->allValues();
  return std::nullopt;
}

bool holds(const id& whole, const id& part, NSUInteger options) {
  if (whole.isNil()) return false;
  if (const auto members = membersOf(whole))
    return std::any_of(members->begin(), members->end(),
                       [&](const id& member) { return equal(member, part, options); });
  const auto* text = whole.get<std::string>();
  if (text == nullptr)
    raise("Can't use in/contains operator with collection " + whole.description() +
          " (not a collection)");
  if (part.isNil()) return false;
  const auto* searched = part.get<std::string>();
  if (searched == nullptr)
    raise("Can't look for value (" + part.description() + ") in string (" + *text +
          "); value is not a string");
  return rangeOfString(*text, *searched, options).length > 0;
}

bool isBetween(const id& value, const id& bounds, NSUInteger options) {
  const auto array = bounds.as<NSArray>();
  if (!array || array->count() != 2)
    raise("Can't use between operator with " + bounds.description() + "; it needs two bounds");
  const id& low = array->objectAtIndex(0);
  const id& high = array->objectAtIndex(1);
  if (value.isNil() || low.isNull() || high.isNull()) return false;
  return order(value, low, options) != NSOrderedAscending &&
         order(value, high, options) != NSOrderedDescending;
}

bool isOrdered(PredicateOperator comparison, NSComparisonResult result) {
  switch (comparison) {
    case PredicateOperator::Less:
      return result == NSOrderedAscending;
    case PredicateOperator::LessOrEqual:
      return result != NSOrderedDescending;
    case PredicateOperator::Greater:
      return result == NSOrderedDescending;
    default:
      return result != NSOrderedAscending;
  }
}

/// The comparisons of two texts that are no order.
bool fits(PredicateOperator comparison, const std::string& text, const std::string& other,
          NSUInteger options) {
  switch (comparison) {
    case PredicateOperator::BeginsWith:
      return rangeOfString(text, other, options | NSAnchoredSearch).length > 0;
    case PredicateOperator::EndsWith:
      return rangeOfString(text, other, options | NSAnchoredSearch | NSBackwardsSearch).length > 0;
    case PredicateOperator::Like:
      return fitsWildcards(text, other, options);
    default:
      return fitsExpression(text, other, options);
  }
}

bool textComparison(PredicateOperator comparison, const id& left, const id& right,
                    NSUInteger options) {
  if (left.isNil() || right.isNil()) return false;
  const auto* text = left.get<std::string>();
  const auto* other = right.get<std::string>();
  if (text == nullptr || other == nullptr)
    raise("Can't do " + std::string(textOf(comparison)) + " on object " +
          (text == nullptr ? left : right).description() + "; it is not a string");
  return fits(comparison, *text, *other, options);
}

}  // namespace

bool ComparisonPredicate::holdsFor(const id& left, const id& right) const {
  const NSUInteger options = comparison_.options;
  switch (comparison_.comparison) {
    case PredicateOperator::Equal:
      return equal(left, right, options);
    case PredicateOperator::NotEqual:
      return !equal(left, right, options);
    case PredicateOperator::Less:
    case PredicateOperator::LessOrEqual:
    case PredicateOperator::Greater:
    case PredicateOperator::GreaterOrEqual:
      return !left.isNil() && !right.isNil() &&
             isOrdered(comparison_.comparison, order(left, right, options));
    case PredicateOperator::Between:
      return isBetween(left, right, options);
    case PredicateOperator::In:
      return holds(right, left, options);
    case PredicateOperator::Contains:
      return holds(left, right, options);
    default:
      return textComparison(comparison_.comparison, left, right, options);
  }
}

bool ComparisonPredicate::matches(const id& object) const {
  const id left = comparison_.left.evaluate(object);
  const id right = comparison_.right.evaluate(object);
  if (comparison_.quantifier == PredicateQuantifier::Direct) return holdsFor(left, right);
  const auto members = left.isNil() ? std::vector<id>() : membersOf(left);
  if (!members) raise("The left hand side for an ALL or ANY operator must be a collection.");
  const auto holdsForMember = [&](const id& member) { return holdsFor(member, right); };
  switch (comparison_.quantifier) {
    case PredicateQuantifier::Any:
      return std::any_of(members->begin(), members->end(), holdsForMember);
    case PredicateQuantifier::All:
      return std::all_of(members->begin(), members->end(), holdsForMember);
    default:
      return std::none_of(members->begin(), members->end(), holdsForMember);
  }
}

}  // namespace ORLFoundation::internal::predicate
