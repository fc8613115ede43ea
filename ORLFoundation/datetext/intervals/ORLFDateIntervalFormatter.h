/// Spans of dates as text, whole years and whole months in short forms. A span given as a half-open
/// range, up to an end that is no part of it, is told by its last moment.
///
///     ORLFDateIntervalFormatter formatter;
///     formatter.setDateStyle(NSDateIntervalFormatterShortStyle);
///     formatter.setUseCompactFormat(true);
///     formatter.stringFromDate(from, to);  // "2024" from 1 January 2024 to 1 January 2025
///
/// Two formatters of dates, of the names of months and of years, are shared by all instances. They
/// are made at the first need, in the locale, the calendar and the zone that the process has then,
/// and stay so: neither the locale nor the zone of an instance has a say in the short forms.
#pragma once

#include <ORLFoundation/platform/format/NSDateIntervalFormatter.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class ORLFDateIntervalFormatter : public NSDateIntervalFormatter {
 public:
  using NSDateIntervalFormatter::NSDateIntervalFormatter;

  /// Whether whole years and whole months are told in the short forms: "2024", "2022 - 2024",
  /// "MAR 2024", "JAN 2022 - NOV 2022". Off at first.
  [[nodiscard]] bool useCompactFormat() const noexcept { return useCompactFormat_; }
  void setUseCompactFormat(bool compact);
  /// Whether the end that is given is a part of the span. Off at first: then the end is moved back
  /// by one unit of what is told, a minute (under the short and the medium time style), a second
  /// (under the others) or a day (under a date style alone).
  [[nodiscard]] bool includeEndDateInRange() const noexcept { return includeEndDateInRange_; }
  void setIncludeEndDateInRange(bool include);

  /// `stringFromDate:toDate:`  Whether a span is whole is decided, in `calendar`, by the end as it
  /// is given; the text names the end as it is shown. Anything that is not whole, and everything
  /// without `useCompactFormat`, is told by the base class, which gives nil for a nil date. Without
  /// a calendar no end can be moved: it is nil. With neither style the end stays as it is, and the
  /// log has "Condition Failed: ... dateStyle of timeStyle can not both be
  /// NSDateIntervalFormatterNoStyle".
  [[nodiscard]] std::optional<std::string> stringFromDate(
      std::optional<NSDate> fromDate, std::optional<NSDate> toDate) const override;

  static const NSCodingClass& codingClass();
  static std::shared_ptr<ORLFDateIntervalFormatter> initWithCoder(NSCoder& coder);
  void encodeWithCoder(NSCoder& coder) const override;
  const NSCodingClass& classForCoder() const override { return codingClass(); }

  [[nodiscard]] std::string className() const override { return "ORLFDateIntervalFormatter"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  [[nodiscard]] std::optional<NSDate> shownEnd(std::optional<NSDate> end,
                                               const NSCalendar* calendar) const;

  std::atomic<bool> useCompactFormat_ = false;
  std::atomic<bool> includeEndDateInRange_ = false;
};

}  // namespace ORLFoundation
