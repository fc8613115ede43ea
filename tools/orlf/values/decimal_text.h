/// Decimals as the tool reads them from its command line and its files, and as it prints them for
/// people.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

/// What `readDecimal` takes, for messages.
inline constexpr std::string_view kDecimalForm = "a decimal text such as -1250.75";

/// Reads an optional sign, digits with an optional point, and an optional exponent ("2.5e3"), all
/// of the text and exactly. nil for other text, for more than 38 digits and for values that are
/// out of range.
[[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> readDecimal(std::string_view text);
/// The same for an argument of the command line; throws UsageFailure that names it.
[[nodiscard]] ORLFoundation::NSDecimalNumber readDecimalArgument(std::string_view argument,
                                                                 std::string_view text);

/// What `readRate` takes, for messages.
inline constexpr std::string_view kRateForm = "a rate such as 0.045 or 4.5%";

/// Reads a rate: a decimal text, or one of percent ("4.5%"). nil for other text.
[[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> readRate(std::string_view text);
/// The same for an argument of the command line; throws UsageFailure that names it.
[[nodiscard]] ORLFoundation::NSDecimalNumber readRateArgument(std::string_view argument,
                                                              std::string_view text);

/// The digits that a number has after the point, without zeros at their end.
[[nodiscard]] int placesAfterPoint(const ORLFoundation::NSDecimalNumber& number);

/// Prints decimals with the marks of a locale, "-1,250.75". Digits are never rounded away.
class DecimalPrinter {
 public:
  /// At least `fractionDigits` digits follow the mark (0 to 38).
  DecimalPrinter(const std::string& locale, int fractionDigits);
  ~DecimalPrinter();
  DecimalPrinter(DecimalPrinter&&) noexcept;

  /// "NaN" for not-a-number.
  [[nodiscard]] std::string text(const ORLFoundation::NSDecimalNumber& number) const;
  /// The same for nil too, which is printed as `absent`.
  [[nodiscard]] std::string text(const std::optional<ORLFoundation::NSDecimalNumber>& number,
                                 std::string_view absent) const;

 private:
  struct Formatter;
  std::unique_ptr<Formatter> formatter_;
};

}  // namespace orlftool
