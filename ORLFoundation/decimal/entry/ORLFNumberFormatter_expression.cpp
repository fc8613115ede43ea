// How sums are read and worked out.

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <ORLFoundation/platform/format/NSFormattingError.h>

#include <array>
#include <cstddef>
#include <utility>

namespace ORLFoundation {
namespace {

using OperatorPointer = std::shared_ptr<ORLFNumberFormatterOperator>;

constexpr std::size_t kValuesAtFirst = 10;
constexpr std::size_t kOperatorsAtFirst = 5;

// The operator of a character, null for any other. They never change, so one of each serves all.
const OperatorPointer& operatorOf(char16_t unit) {
  const auto make = [](ORLFNumberFormatterOperatorType type) {
    return std::make_shared<ORLFNumberFormatterOperator>(type);
  };
  static const std::array operators{
      make(ORLFNumberFormatterOperatorTypeAdd), make(ORLFNumberFormatterOperatorTypeSubtract),
      make(ORLFNumberFormatterOperatorTypeMultiply), make(ORLFNumberFormatterOperatorTypeDivide),
      make(ORLFNumberFormatterOperatorTypeStartGroup)};
  static const OperatorPointer none;
  constexpr std::u16string_view kCharacters = u"+-*/[";
  const std::size_t place = kCharacters.find(unit);
  return place == std::u16string_view::npos ? none : operators[place];
}

bool isBlank(char16_t unit) {
  if (unit <= 0x7F) return unit == u' ' || unit == u'\t';
  return NSCharacterSet::whitespaceCharacterSet()->longCharacterIsMember(unit);
}

bool fillFormattingError(NSErrorSlot error) {
  return NSFillErrorSlot(error, NSError::errorWithDomain(NSCocoaErrorDomain, NSFormattingError));
}

// Where the reading of an expression stands.
struct Reading {
  ORLFNumberFormatter::Values values;
  ORLFNumberFormatter::Operators operators;
  NSUInteger cursor;
  NSUInteger end;
  bool lastWasValue = false;

  // Moves to the next part; false at the end, and the cursor stays behind the last part.
  bool findPart(std::u16string_view units) {
    NSUInteger next = cursor;
    while (next < end && isBlank(units[next])) ++next;
    if (next == end) return false;
    cursor = next;
    return true;
  }
};

}  // namespace

/// Takes the limits off a formatter while it lives.
class ORLFNumberFormatter::LimitsPutAside {
 public:
  explicit LimitsPutAside(ORLFNumberFormatter& formatter)
      : formatter_(formatter), minimum_(formatter.minimum()), maximum_(formatter.maximum()) {
    formatter_.setMinimum(std::nullopt);
    formatter_.setMaximum(std::nullopt);
  }
  ~LimitsPutAside() {
    formatter_.setMinimum(minimum_);
    formatter_.setMaximum(maximum_);
  }
  LimitsPutAside(const LimitsPutAside&) = delete;
  LimitsPutAside& operator=(const LimitsPutAside&) = delete;

 private:
  ORLFNumberFormatter& formatter_;
  const std::optional<NSNumber> minimum_;
  const std::optional<NSNumber> maximum_;
};

bool ORLFNumberFormatter::getObjectValue(std::optional<NSNumber>* value, NSNumberText& forString,
                                         NSRange* range, NSErrorSlot error) {
  if (!allowExpressions_) return getObjectValueBase(value, forString, range, error);
  std::optional<NSNumber> result;
  const bool isRead = [&] {
    const LimitsPutAside aside(*this);
    return getExpressionValue(&result, forString, range, error);
  }();
  const bool isGood = isRead && checkLimits(result, error);
  if (value && isRead) *value = result;
  return isGood;
}

bool ORLFNumberFormatter::checkLimits(std::optional<NSNumber>& value, NSErrorSlot error) const {
  if (!value) return true;
  std::shared_ptr<const NSError> fault;
  if (maximum() && value->compare(*maximum()) == NSOrderedDescending)
    fault = errorValueIsAboveMaximum(*value, *maximum());
  else if (minimum() && value->compare(*minimum()) == NSOrderedAscending)
    fault = errorValue(*value, *minimum());
  if (!fault) return true;
  value.reset();
  return NSFillErrorSlot(error, std::move(fault));
}

bool ORLFNumberFormatter::getExpressionValue(std::optional<NSNumber>* value,
                                             std::string_view forString, NSRange* range,
                                             NSErrorSlot error) {
  NSNumberText text(forString);
  return getExpressionValue(value, text, range, error);
}

bool ORLFNumberFormatter::getExpressionValue(std::optional<NSNumber>* value,
                                             NSNumberText& forString, NSRange* range,
                                             NSErrorSlot error) {
  const NSRange asked = range ? forString.rangeWithin(*range) : forString.range();
  Reading reading{
      .values = {}, .operators = {}, .cursor = asked.location, .end = NSMaxRange(asked)};
  reading.values.reserve(kValuesAtFirst);
  reading.operators.reserve(kOperatorsAtFirst);
  while (reading.findPart(forString.units())) {
    const char16_t unit = forString.units()[reading.cursor];
    if (const OperatorPointer& next = operatorOf(unit)) {
      ++reading.cursor;
      // Whatever the step gives: only the last one decides.
      if (reading.lastWasValue || pushLeftDefaultOperandForOpperator(*next, reading.values)) {
        proccessOperator(next, reading.values, reading.operators, error);
        reading.lastWasValue = false;
      }
    } else if (unit == u']') {
      ++reading.cursor;
      proccessEndGroupWithValues(reading.values, reading.operators, error);
      reading.lastWasValue = true;
    } else if (reading.lastWasValue) {
      NSRange whole = asked;
      if (getObjectValueBase(nullptr, forString, &whole, error)) fillFormattingError(error);
      return false;
    } else {
      NSRange rest{reading.cursor, reading.end - reading.cursor};
      std::optional<NSNumber> number;
      if (!getObjectValueBase(&number, forString, &rest, error) || !number) return false;
      reading.values.push_back(*number);
      reading.cursor = NSMaxRange(rest);
      reading.lastWasValue = true;
    }
  }
  if (!reading.lastWasValue && !reading.operators.empty()) reading.operators.pop_back();
  if (!proccessOperator(nullptr, reading.values, reading.operators, error)) return false;
  if (value) {
    *value = std::nullopt;
    if (!reading.values.empty()) *value = reading.values.back();
  }
  if (range) *range = {asked.location, reading.cursor - asked.location};
  return true;
}

bool ORLFNumberFormatter::reduceTop(Values& values, Operators& operators, NSErrorSlot error) {
  const OperatorPointer top = operators.back();
  const NSNumber right = values.back();
  values.pop_back();
  std::optional<NSNumber> left;
  if (top->numberOfOpperands() >= 2 && !values.empty()) {
    left = values.back();
    values.pop_back();
  }
  const auto result = top->numberByPerformingOperation(left, right, error);
  if (!result) return false;
  values.push_back(*result);
  operators.pop_back();
  return true;
}

bool ORLFNumberFormatter::proccessOperator(const OperatorPointer& theOperator, Values& withValues,
                                           Operators& operators, NSErrorSlot error) {
  constexpr auto kStartGroup = ORLFNumberFormatterOperatorTypeStartGroup;
  bool isDone = true;
  while (isDone && !withValues.empty() && !operators.empty()) {
    const auto top = operators.back()->type();
    if (theOperator &&
        (top == kStartGroup || theOperator->type() == kStartGroup || top < theOperator->type()))
      break;
    isDone = reduceTop(withValues, operators, error);
  }
  if (theOperator) operators.push_back(theOperator);
  return isDone;
}

bool ORLFNumberFormatter::proccessEndGroupWithValues(Values& values, Operators& operators,
                                                     NSErrorSlot error) {
  const auto isAtStart = [&operators] {
    return !operators.empty() &&
           operators.back()->type() == ORLFNumberFormatterOperatorTypeStartGroup;
  };
  while (!values.empty() && !operators.empty() && !isAtStart())
    if (!reduceTop(values, operators, error)) return false;
  if (isAtStart()) operators.pop_back();
  return true;
}

bool ORLFNumberFormatter::pushLeftDefaultOperandForOpperator(
    const ORLFNumberFormatterOperator& theOperator, Values& ontoValues) {
  if (theOperator.numberOfOpperands() < 2) return true;
  const auto value = theOperator.defaultOpperand(generatesDecimalNumbers());
  if (!value) return false;
  ontoValues.push_back(*value);
  return true;
}

}  // namespace ORLFoundation
