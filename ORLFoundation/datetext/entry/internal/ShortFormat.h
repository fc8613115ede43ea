/// What formats of dates are looked at and edited for.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::entry {

/// Whether the month comes first in a short format of day, month and year, in this order or that,
/// with "/", "." or "-" between them. nil for any other, which is told in the log.
[[nodiscard]] std::optional<bool> monthFirstOfShortFormat(std::string_view format);

struct WideParts {
  bool year = false;
  bool month = false;
  bool day = false;
  bool dashes = false;  // "-" for every "/"

  [[nodiscard]] bool any() const noexcept { return year || month || day || dashes; }
};
/// The format with each run of up to three "y", of one "M" and of one "d" as wide as asked for.
/// Letters in quotes are no part of runs.
[[nodiscard]] std::string widenedFormat(std::string_view format, WideParts parts);

}  // namespace ORLFoundation::internal::entry
