/// One form of spans made ready: ICU's formatter of intervals over our zone.
#pragma once

#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::format {

struct DateSpanSettings {
  std::string locale;    // ICU's identifier, with the calendar's keyword where one was chosen
  std::string skeleton;  // the letters to be told, "yMMMdjm"
  std::shared_ptr<NSTimeZone> zone;
};

/// Used by one thread at a time.
class DateSpanEngine {
 public:
  explicit DateSpanEngine(const DateSpanSettings& settings);
  ~DateSpanEngine();
  DateSpanEngine(const DateSpanEngine&) = delete;
  DateSpanEngine& operator=(const DateSpanEngine&) = delete;

  /// nil for dates that the calendar does not count.
  [[nodiscard]] std::optional<std::string> print(NSDate from, NSDate to) const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace ORLFoundation::internal::format
