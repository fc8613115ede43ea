
#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

#include <ORLFoundation/decimal/internal/ORLFAmountReader.h>

namespace ORLFoundation {

std::optional<NSDecimalNumber> orlfDecimalNumberWithFormattedString(
    std::optional<std::string_view> text) {
  if (!text) return std::nullopt;
  return internal::decimal::ORLFAmountReader(*text).read();
}

}  // namespace ORLFoundation
