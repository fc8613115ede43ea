#include "plan/plan_file.h"

#include <charconv>
#include <utility>

#include "cli/message_text.h"
#include "cli/words.h"
#include "io/input_file.h"
#include "plan/plan_fields.h"
#include "session.h"
#include "values/date_text.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kLongestInterval = 100000;

/// Turns the fields of one object into values; every failure names the file, the line and the
/// field.
class ObjectReader {
 public:
  ObjectReader(const std::string& name, PlanPlace place, const PlanObject& object)
      : name_(name), place_(place), object_(object) {}

  [[nodiscard]] const PlanValue* find(std::string_view field) const {
    const auto found = object_.values.find(field);
    return found == object_.values.end() ? nullptr : &found->second;
  }
  [[noreturn]] void fail(std::string_view field, std::string_view expected) const {
    const PlanValue& value = *find(field);
    failAtField(name_, value.line, planFieldPath(object_.path, field), expected,
                value.quoted ? quotedForMessage(value.text) : value.text);
  }
  [[noreturn]] void fail(std::string_view field) const {
    fail(field, findPlanField(place_, field)->expected);
  }

  [[nodiscard]] std::string text(std::string_view field) const {
    const PlanValue* value = find(field);
    return value != nullptr ? value->text : std::string();
  }
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view field, std::int64_t least,
                                                    std::int64_t most) const {
    const PlanValue* value = find(field);
    if (value == nullptr) return std::nullopt;
    std::int64_t number = 0;
    const char* end = value->text.data() + value->text.size();
    const auto [stop, error] = std::from_chars(value->text.data(), end, number);
    if (error != std::errc() || stop != end || number < least || number > most) fail(field);
    return number;
  }
  [[nodiscard]] std::optional<NSDecimalNumber> decimal(std::string_view field) const {
    const PlanValue* value = find(field);
    if (value == nullptr) return std::nullopt;
    if (const std::optional<NSDecimalNumber> number = readDecimal(value->text)) return number;
    fail(field);
  }
  /// A fraction such as "0.045", or a percentage such as "4.5%".
  [[nodiscard]] std::optional<NSDecimalNumber> rate(std::string_view field) const {
    const PlanValue* value = find(field);
    if (value == nullptr) return std::nullopt;
    if (const std::optional<NSDecimalNumber> number = readRate(value->text)) return number;
    fail(field);
  }
  [[nodiscard]] std::optional<NSDate> date(std::string_view field,
                                           const NSCalendar& calendar) const {
    const PlanValue* value = find(field);
    if (value == nullptr) return std::nullopt;
    if (const std::optional<NSDate> date = readDate(value->text, calendar)) return date;
    fail(field);
  }

 private:
  const std::string& name_;
  PlanPlace place_;
  const PlanObject& object_;
};

std::shared_ptr<NSCalendar> calendarOfFile(const ObjectReader& root,
                                           const PlanFileDefaults& defaults) {
  const PlanValue* zone = root.find("zone");
  if (zone != nullptr && !NSTimeZone::timeZoneWithName(zone->text)) root.fail("zone");
  const std::string ownZone = zone != nullptr ? zone->text : "UTC";
  std::shared_ptr<NSCalendar> calendar =
      makeCalendar(defaults.zone.value_or(ownZone), defaults.locale);
  if (const auto weekday = root.integer("firstWeekday", 1, 7)) calendar->setFirstWeekday(*weekday);
  if (const auto days = root.integer("minimumDaysInFirstWeek", 1, 7))
    calendar->setMinimumDaysInFirstWeek(*days);
  return calendar;
}

PlanRounding roundingOfFile(const ObjectReader& object) {
  PlanRounding rounding;
  if (const auto scale = object.integer("scale", -128, 127))
    rounding.scale = static_cast<std::int16_t>(*scale);
  if (object.find("mode") == nullptr) return rounding;
  const std::optional<NSRoundingMode> mode = roundingModeNamed(object.text("mode"));
  if (!mode) object.fail("mode");
  rounding.mode = *mode;
  return rounding;
}

PlanTerms termsOfSegment(const ObjectReader& object, const NSCalendar& calendar) {
  PlanTerms terms;
  terms.name = object.text("name");
  terms.start = object.date("start", calendar).value_or(NSDate());
  terms.principal = object.decimal("principal");
  terms.contribution = object.decimal("contribution");
  terms.interval = object.integer("interval", 1, kLongestInterval).value_or(1);
  terms.rate = object.rate("rate");
  terms.inflation = object.rate("inflation");
  if (object.find("frequency") == nullptr) return terms;
  const std::optional<NSCalendarUnit> frequency = frequencyNamed(object.text("frequency"));
  if (!frequency) object.fail("frequency");
  terms.frequency = *frequency;
  return terms;
}

std::string dateAfter(NSDate earlier, const NSCalendar& calendar) {
  return "a date after " + shortDateText(earlier, calendar);
}

}  // namespace

PlanFile parsePlanFile(std::string_view text, const std::string& name,
                       const PlanFileDefaults& defaults) {
  const PlanFields fields = readPlanFields(text, name);
  const ObjectReader root(name, PlanPlace::kRoot, fields.root);
  PlanFile file;
  file.title = root.text("title");
  file.calendar = calendarOfFile(root, defaults);
  if (fields.hasRounding)
    file.rounding = roundingOfFile(ObjectReader(name, PlanPlace::kRounding, fields.rounding));
  for (const PlanObject& object : fields.segments) {
    const ObjectReader segment(name, PlanPlace::kSegment, object);
    PlanTerms terms = termsOfSegment(segment, *file.calendar);
    if (!file.segments.empty() &&
        terms.start.compare(file.segments.back().start) != NSOrderedDescending)
      segment.fail("start", dateAfter(file.segments.back().start, *file.calendar));
    file.segments.push_back(std::move(terms));
  }
  file.end = root.date("end", *file.calendar);
  if (file.end && file.end->compare(file.segments.back().start) != NSOrderedDescending)
    root.fail("end", dateAfter(file.segments.back().start, *file.calendar));
  return file;
}

PlanFile readPlanFile(const std::string& path, const PlanFileDefaults& defaults) {
  return parsePlanFile(readInputFile(path, "a plan file"), path, defaults);
}

}  // namespace orlftool
