#include "values/whole_number.h"

#include <charconv>
#include <string>

#include "cli/failure.h"

namespace orlftool {

std::optional<std::int64_t> readWholeNumber(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::int64_t readWholeArgument(std::string_view argument, std::string_view text, std::int64_t least,
                               std::int64_t most) {
  const std::optional<std::int64_t> number = readWholeNumber(text);
  if (number && *number >= least && *number <= most) return *number;
  throw UsageFailure(std::string(argument) + ": expected a whole number from " +
                     std::to_string(least) + " to " + std::to_string(most) + ", got '" +
                     std::string(text) + "'");
}

}  // namespace orlftool
