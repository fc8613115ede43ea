#include "money/typed_sum.h"

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>
#include <ORLFoundation/decimal/entry/ORLFPercentNumberFormatter.h>
#include <ORLFoundation/platform/base/Trimmed.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <utility>

#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::firstUTF8Character;
using internal::base::trimmed;
using internal::base::unitsInUTF16;

constexpr NSInteger kAboveMaximum = 2559;
constexpr std::string_view kBlanks = " \t\r\n";

/// Cuts a UTF-8 text at places told in UTF-16 units, from the left to the right.
class Cutter {
 public:
  explicit Cutter(std::string_view text) : rest_(text) {}

  /// What stands before the place, from the last one on.
  std::string_view until(NSUInteger place) {
    const std::string_view from = rest_;
    while (units_ < place && !rest_.empty()) {
      const auto character = firstUTF8Character(rest_);
      units_ += unitsInUTF16(character.codePoint);
      rest_.remove_prefix(character.length);
    }
    return from.substr(0, from.size() - rest_.size());
  }
  [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
  NSUInteger units_ = 0;
};

}  // namespace

/// Writes down each number that it reads, and the place where none begins.
class SumReader::Formatter : public ORLFNumberFormatter {
 public:
  struct Number {
    NSRange range;
    NSDecimalNumber number;
  };

  using ORLFNumberFormatter::getObjectValueBase;
  bool getObjectValueBase(std::optional<NSNumber>* value, NSNumberText& forString, NSRange* range,
                          NSErrorSlot error) override {
    const NSUInteger start = range ? range->location : 0;
    const bool isRead = ORLFNumberFormatter::getObjectValueBase(value, forString, range, error);
    // Without a place for the value a number follows a number.
    if (value == nullptr) hasTwoInARow = true;
    if (value == nullptr || range == nullptr) return isRead;
    if (!isRead) failedAt = start;
    if (isRead) numbers.push_back({*range, NSDecimalNumber((*value)->decimalValue())});
    return isRead;
  }

  void forget() {
    numbers.clear();
    failedAt.reset();
    hasTwoInARow = false;
  }

  std::vector<Number> numbers;
  std::optional<NSUInteger> failedAt;
  bool hasTwoInARow = false;
};

namespace {

std::string limitFault(const NSError& error) {
  const bool isAbove = error.code() == kAboveMaximum;
  const auto text = [&error](const char* key) {
    const auto number = error.userInfo()->objectForKey(key).as<NSNumber>();
    return number ? number->stringValue() : "";
  };
  return text("NSInvalidValue") + (isAbove
                                       ? " is above the maximum " + text("NSMaximumValidValue")
                                       : " is below the minimum " + text("NSMinimumValidValue"));
}

}  // namespace

SumReader::SumReader(const std::string& locale, const Limit& minimum, const Limit& maximum)
    : formatter_(std::make_unique<Formatter>()) {
  formatter_->setLocale(std::make_shared<NSLocale>(locale));
  formatter_->setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter_->setGeneratesDecimalNumbers(true);
  if (minimum) formatter_->setMinimum(*minimum);
  if (maximum) formatter_->setMaximum(*maximum);
}

SumReader::~SumReader() = default;

TypedSum SumReader::read(std::string_view text) {
  const std::string_view typed = trimmed(text, kBlanks);
  formatter_->forget();
  TypedSum sum;
  std::optional<NSNumber> value;
  std::shared_ptr<const NSError> error;
  NSNumberText units(typed);
  NSRange range = units.range();
  const bool isRead = formatter_->getObjectValue(&value, units, &range, &error);
  Cutter numbers(typed);
  for (const Formatter::Number& each : formatter_->numbers) {
    static_cast<void>(numbers.until(each.range.location));
    sum.numbers.push_back({std::string(numbers.until(NSMaxRange(each.range))), each.number});
  }
  if (isRead && value && range == units.range()) {
    sum.value = NSDecimalNumber(value->decimalValue());
  } else if (formatter_->hasTwoInARow) {
    sum.fault = "a sign is missing between two parts";
  } else if (formatter_->failedAt) {
    Cutter failed(typed);
    static_cast<void>(failed.until(*formatter_->failedAt));
    sum.fault = "no number begins at " + quotedForMessage(failed.rest());
  } else if (isRead && value) {
    sum.fault = "there is more than a sum";
  } else if (isRead && sum.numbers.empty()) {
    sum.fault = "there is no number";
  } else if (error && !error->userInfo()->objectForKey("NSInvalidValue").isNil()) {
    sum.fault = limitFault(*error);
  } else if (error) {
    sum.fault = error->localizedDescription();
  } else {
    sum.fault = "it divides by zero, or a number is missing";
  }
  return sum;
}

TypedSum readPercentage(const std::string& locale, std::string_view text) {
  ORLFPercentNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>(locale));
  formatter.setGeneratesDecimalNumbers(true);
  TypedSum percentage;
  if (const auto value = formatter.numberFromString(trimmed(text, kBlanks)))
    percentage.value = NSDecimalNumber(value->decimalValue());
  else
    percentage.fault = "expected a percentage as " + locale + " writes it, " +
                       quotedForMessage(formatter.stringFromDouble(0.0525));
  return percentage;
}

}  // namespace orlftool
