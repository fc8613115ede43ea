#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>

#include <ORLFoundation/calendar/ORLFCalendarNow.h>
#include <ORLFoundation/datetext/inference/internal/ORLFDateParts.h>
#include <ORLFoundation/datetext/inference/internal/ORLFDateRoles.h>
#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ORLFoundation {
namespace {

using namespace internal::inference;
using Engine = ORLFDateFormatInferenceEngine;

constinit internal::base::Replaceable<NSSet> classFormats([] {
  return NSSet::setWithObjects({NSInteger{1}, NSInteger{2}, NSInteger{3}});
});

/// null for a number that is no format.
const DateOrder* orderOf(NSInteger format) noexcept {
  const auto* const order =
      std::find_if(kDateOrders.begin(), kDateOrders.end(),
                   [format](const DateOrder& each) { return each.format == format; });
  return order == kDateOrders.end() ? nullptr : order;
}

std::array<NSInteger, 3> signedNumbers(const std::array<NSUInteger, 3>& numbers) noexcept {
  return {static_cast<NSInteger>(numbers[0]), static_cast<NSInteger>(numbers[1]),
          static_cast<NSInteger>(numbers[2])};
}

}  // namespace

ORLFDateFormatInferenceEngine::ORLFDateFormatInferenceEngine()
    : dateSeperatorCharacterSet_(NSCharacterSet::characterSetWithCharactersInString("/: -.")),
      dateY2KSeperatorCharacterSet_(NSCharacterSet::characterSetWithCharactersInString("'")),
      bits_(kAllRoles),
      dateParsingCalendar_(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian)) {
  updateAllDateSeperatorCharacterSet();
}

std::shared_ptr<NSSet> Engine::classPerferedDateFormats() { return classFormats.current(); }

void Engine::setClassPerferedDateFormats(const std::shared_ptr<NSSet>& formats) {
  classFormats.exchange(copyOf(formats));
}

void Engine::reset() { setBits(kAllRoles); }

bool Engine::processDateString(std::string_view string) {
  std::array<NSUInteger, 3> numbers{};
  if (!parseDate(string, &numbers[0], &numbers[1], &numbers[2])) return false;
  const std::array<NSInteger, 3> components = signedNumbers(numbers);
  processDateComponent1(components[0], components[1], components[2]);
  return true;
}

void Engine::processDateComponent1(NSInteger component1, NSInteger component2,
                                   NSInteger component3) {
  setBits(narrowedRoles(bits_ & rolesOfNumbers({component1, component2, component3})));
}

std::vector<NSInteger> Engine::possibleDateFormats() const { return formatsOfRoles(bits_); }

std::vector<NSInteger> Engine::formatsOfRoles(NSInteger bits) const {
  const std::shared_ptr<NSSet> favoured =
      perferedDateFormats_ ? perferedDateFormats_ : classPerferedDateFormats();
  std::vector<NSInteger> all, kept;
  for (const DateOrder& order : kDateOrders) {
    if ((bits & order.bits) != order.bits) continue;
    all.push_back(order.format);
    if (favoured->containsObject(order.format)) kept.push_back(order.format);
  }
  return kept.empty() ? all : kept;
}

bool Engine::parseDate(std::string_view text, NSUInteger* componentsNumber1, NSUInteger* number2,
                       NSUInteger* number3) const {
  const std::optional<DateParts> parts = allDateSeperatorCharacterSet_
                                             ? splitDate(text, *allDateSeperatorCharacterSet_)
                                             : std::nullopt;
  if (!parts) return false;
  const std::array<NSUInteger*, 3> outputs{componentsNumber1, number2, number3};
  for (std::size_t place = 0; place < outputs.size(); ++place)
    if (outputs[place] != nullptr)
      *outputs[place] = static_cast<NSUInteger>(integerValue(parts->texts[place]));
  const bool isOfThisCentury =
      dateY2KSeperatorCharacterSet_ &&
      dateY2KSeperatorCharacterSet_->longCharacterIsMember(parts->secondSeparator);
  if (number3 != nullptr && isOfThisCentury && *number3 < 100) *number3 += 2000;
  return parts->allHoldDigits();
}

NSUInteger Engine::fullYear(NSUInteger shortYear) const noexcept {
  const NSUInteger century = currentYear_ / 100 * 100;
  return century + shortYear - (shortYear > currentYear_ % 100 + 1 ? 100 : 0);
}

std::optional<NSDate> Engine::buildDateWithComponentsNumber1(NSUInteger number1, NSUInteger number2,
                                                             NSUInteger number3,
                                                             NSInteger withFormat) {
  const std::array<NSUInteger, 3> numbers{number1, number2, number3};
  const DateOrder* const order = orderOf(withFormat);
  const NSUInteger day = order ? numbers[order->day] : 0;
  const NSUInteger month = order ? numbers[order->month] : 0;
  NSUInteger year = order ? numbers[order->year] : 0;
  if (year <= 999) {
    if (currentYear_ == 0 && dateParsingCalendar_)
      setCurrentYear(static_cast<NSUInteger>(
          dateParsingCalendar_->component(NSCalendarUnitYear, orlfToday(*dateParsingCalendar_))));
    if (year > 100) return std::nullopt;
    year = fullYear(year);
  }
  if (day == 0 || month == 0 || year == 0 || !dateParsingCalendar_) return std::nullopt;
  NSDateComponents components;
  components.setDay(static_cast<NSInteger>(day));
  components.setMonth(static_cast<NSInteger>(month));
  components.setYear(static_cast<NSInteger>(year));
  return dateParsingCalendar_->dateFromComponents(components);
}

std::optional<NSDate> Engine::dateInferredFromString(std::string_view string) {
  std::array<NSUInteger, 3> numbers{};
  if (!parseDate(string, &numbers[0], &numbers[1], &numbers[2])) return std::nullopt;
  const std::vector<NSInteger> formats =
      formatsOfRoles(narrowedRoles(bits_ & rolesOfNumbers(signedNumbers(numbers))));
  return buildDateWithComponentsNumber1(numbers[0], numbers[1], numbers[2],
                                        formats.empty() ? 0 : formats.front());
}

std::optional<NSDate> Engine::dateFromString(std::string_view string,
                                             NSInteger withInferenceFormat) {
  std::array<NSUInteger, 3> numbers{};
  if (!parseDate(string, &numbers[0], &numbers[1], &numbers[2])) return std::nullopt;
  return buildDateWithComponentsNumber1(numbers[0], numbers[1], numbers[2], withInferenceFormat);
}

void Engine::setDateSeperatorCharacterSet(std::shared_ptr<NSCharacterSet> set) {
  if (set == dateSeperatorCharacterSet_) return;
  changeValue("dateSeperatorCharacterSet", [&] { dateSeperatorCharacterSet_ = copyOf(set); });
  updateAllDateSeperatorCharacterSet();
}

void Engine::setDateY2KSeperatorCharacterSet(std::shared_ptr<NSCharacterSet> set) {
  if (set == dateY2KSeperatorCharacterSet_) return;
  changeValue("dateY2KSeperatorCharacterSet", [&] { dateY2KSeperatorCharacterSet_ = copyOf(set); });
  updateAllDateSeperatorCharacterSet();
}

void Engine::setAllDateSeperatorCharacterSet(std::shared_ptr<NSCharacterSet> set) {
  changeValue("allDateSeperatorCharacterSet", [&] { allDateSeperatorCharacterSet_ = copyOf(set); });
}

void Engine::updateAllDateSeperatorCharacterSet() {
  const auto& first = dateSeperatorCharacterSet_
                          ? dateSeperatorCharacterSet_
                          : NSCharacterSet::characterSetWithCharactersInString("");
  setAllDateSeperatorCharacterSet(
      first->setByAddingCharactersOfSet(dateY2KSeperatorCharacterSet_.get()));
}

void Engine::setPerferedDateFormats(const std::shared_ptr<NSSet>& formats) {
  changeValue("perferedDateFormats", [&] { perferedDateFormats_ = copyOf(formats); });
}

void Engine::setBits(NSInteger bits) {
  changeValue("bits", [&] { bits_ = bits; });
}

void Engine::setCurrentYear(NSUInteger year) {
  changeValue("currentYear", [&] { currentYear_ = year; });
}

void Engine::setDateParsingCalendar(std::shared_ptr<NSCalendar> calendar) {
  changeValue("dateParsingCalendar", [&] { dateParsingCalendar_ = std::move(calendar); });
}

const NSKeyTable& Engine::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readWrite<&Engine::dateSeperatorCharacterSet, &Engine::setDateSeperatorCharacterSet>(
           "dateSeperatorCharacterSet"),
       NSKey::readWrite<&Engine::dateY2KSeperatorCharacterSet,
                        &Engine::setDateY2KSeperatorCharacterSet>("dateY2KSeperatorCharacterSet"),
       NSKey::readWrite<&Engine::perferedDateFormats, &Engine::setPerferedDateFormats>(
           "perferedDateFormats"),
       NSKey::readWrite<&Engine::bits, &Engine::setBits>("bits"),
       NSKey::readWrite<&Engine::currentYear, &Engine::setCurrentYear>("currentYear"),
       NSKey::readWrite<&Engine::dateParsingCalendar, &Engine::setDateParsingCalendar>(
           "dateParsingCalendar"),
       NSKey::readWrite<&Engine::allDateSeperatorCharacterSet,
                        &Engine::setAllDateSeperatorCharacterSet>("allDateSeperatorCharacterSet")});
  return table;
}

}  // namespace ORLFoundation
