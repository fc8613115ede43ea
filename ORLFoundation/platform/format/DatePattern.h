/// Dates as text under one fixed pattern ("yyyy-MM-dd'T'HH:mm:ssZZZ"), in English without a
/// locale's customs and in the Gregorian calendar of all time.
///
///     const DatePattern pattern("yyyy-MM-dd");
///     pattern.read("2024-1-31");        // midnight GMT of that day
///     pattern.write(date, 5 * 3600);    // as clocks show it five hours east of GMT
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::format {

/// The formatter behind it is not safe on several threads; each use holds its lock.
class DatePattern {
 public:
  explicit DatePattern(std::string_view pattern);
  ~DatePattern();
  DatePattern(const DatePattern&) = delete;
  DatePattern& operator=(const DatePattern&) = delete;

  /// The date of a text, in GMT where it tells no zone. Other marks and widths than the pattern's,
  /// a month's name for its number, and white space around the fields and at the end are taken;
  /// words of the pattern must stand in the text as they are. nil for any other text, for one of
  /// more than 64 bytes, and for what the calendar does not hold (30 February, 24:00). Two digits
  /// of a year under "yy" lie from 1950 to 2049.
  [[nodiscard]] std::optional<NSDate> read(std::string_view text) const;
  /// As clocks show it that many seconds east of GMT, fractions of a second cut off. Empty text for
  /// a date that is not finite or more than some five million years away.
  [[nodiscard]] std::string write(NSDate date, NSInteger secondsFromGMT) const;

 private:
  struct Formatter;
  std::unique_ptr<Formatter> formatter_;
};

}  // namespace ORLFoundation::internal::format
