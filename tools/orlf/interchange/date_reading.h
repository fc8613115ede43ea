/// Dates in columns of a table, under an order of day, month and year that is named or that the
/// dates themselves leave no doubt about.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "values/date_column.h"

namespace ORLFoundation {
class NSDateFormatter;
}  // namespace ORLFoundation

namespace orlftool {

/// What names a format, for help and messages.
inline constexpr std::string_view kDateFormatNames =
    "auto, dmy, mdy, ymd, ydm, myd, dym or a pattern such as yyyyMMdd or d MMM y";

class DateReading {
 public:
  /// Dates are in the zone of the calendar, names of months in a pattern the locale's. With
  /// `allOrders`, auto takes ydm, myd and dym for as likely as the others. Throws UsageFailure for
  /// another word.
  DateReading(const std::string& format, bool allOrders,
              std::shared_ptr<ORLFoundation::NSCalendar> calendar, const std::string& locale);
  ~DateReading();
  DateReading(const DateReading&) = delete;
  DateReading& operator=(const DateReading&) = delete;

  /// Each date is to be shown first. A text that is a date in no order changes nothing.
  void add(std::string_view text, std::uint64_t line);

  struct Finding {
    /// For people: the row that decided, or how the dates read under each order that is left.
    std::vector<std::string> notes;
    /// Why the dates cannot be read; empty where they can.
    std::string fault;
  };
  /// Settles the order when all were shown.
  [[nodiscard]] Finding settle();

  /// The start of the day. nil for other text and for a day that the calendar does not have.
  [[nodiscard]] std::optional<ORLFoundation::NSDate> read(std::string_view text);

 private:
  /// How the dates so far read under one order.
  struct Course {
    std::optional<ORLFoundation::NSDate> earliest, latest, last;
    bool rises = false, falls = false;
    std::uint64_t fingerprint = 0;
  };

  static void extend(Course& course, const std::optional<ORLFoundation::NSDate>& date);
  [[nodiscard]] const Course& courseOf(DateOrder order) const;
  [[nodiscard]] std::string describe(DateOrder order) const;
  [[nodiscard]] std::string decidingRow(DateOrder order) const;
  [[nodiscard]] bool isMeant(DateOrder order) const;

  const std::shared_ptr<ORLFoundation::NSCalendar> calendar_;
  const bool allOrders_;
  const bool isAuto_;
  DateColumn column_;
  std::shared_ptr<ORLFoundation::NSDateFormatter> pattern_;
  DateOrder order_ = 0;
  std::array<Course, kDateOrders.size()> courses_;
};

}  // namespace orlftool
