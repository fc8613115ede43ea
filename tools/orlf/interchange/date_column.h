/// Dates in columns of a table, whose order of day, month and year nothing but the dates tells.
#pragma once

#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
class NSDateFormatter;
}  // namespace ORLFoundation

namespace orlftool {

/// The names of the options, for help and messages.
inline constexpr std::string_view kDateFormatNames =
    "auto, dmy, mdy, ymd, ydm, myd, dym or a pattern such as yyyyMMdd or d MMM y";

class DateColumn {
 public:
  /// `format` is one of the names above. Dates are in the zone of the calendar; names of months are
  /// the locale's. With `allOrders`, auto takes ydm, myd and dym into account too. Throws
  /// UsageFailure for another word.
  DateColumn(const std::string& format, bool allOrders,
             std::shared_ptr<ORLFoundation::NSCalendar> calendar, const std::string& locale);
  ~DateColumn();
  DateColumn(const DateColumn&) = delete;
  DateColumn& operator=(const DateColumn&) = delete;

  /// A date of the column, or what stands in its place.
  void add(std::string_view text, std::uint64_t line);

  struct Finding {
    /// For people: the row that decided, or each reading that is left; may be empty.
    std::vector<std::string> notes;
    /// What keeps the dates from being read; empty for nothing.
    std::string fault;
  };
  /// Settles the order, after all dates were added.
  [[nodiscard]] Finding settle();

  /// The start of the day that a text names, under the order that was settled. nil for other text,
  /// for a day that its month does not have and for a year of three digits.
  [[nodiscard]] std::optional<ORLFoundation::NSDate> read(std::string_view text);

 private:
  /// How a column reads under one order.
  struct Reading {
    std::optional<ORLFoundation::NSDate> earliest, latest, last;
    bool rises = false, falls = false;
    std::uint64_t fingerprint = 0;  // of all its dates in their order
  };
  static constexpr std::size_t kOrders = 6;

  [[nodiscard]] std::optional<ORLFoundation::NSDate> dateUnder(ORLFoundation::NSInteger order,
                                                               std::string_view text);
  [[nodiscard]] std::vector<ORLFoundation::NSInteger> ordersLeft() const;
  [[nodiscard]] std::string describe(ORLFoundation::NSInteger order) const;
  static void extend(Reading& reading, const std::optional<ORLFoundation::NSDate>& date);

  const std::shared_ptr<ORLFoundation::NSCalendar> calendar_;
  std::shared_ptr<ORLFoundation::NSDateFormatter> pattern_;
  ORLFoundation::ORLFDateFormatInferenceEngine engine_;
  const bool allOrders_;
  bool isAuto_ = false;
  ORLFoundation::NSInteger order_ = 0;
  std::array<Reading, kOrders> readings_;
  std::string deciding_, contradicting_;
};

}  // namespace orlftool
