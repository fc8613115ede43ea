
#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

#include <ORLFoundation/decimal/internal/ORLFAmountReader.h>

#include <cstdint>
#include <limits>

namespace ORLFoundation {

std::optional<NSDecimalNumber> orlfDecimalNumberWithFormattedString(
    std::optional<std::string_view> text) {
  constexpr auto kLongestText = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  if (!text || text->size() > kLongestText) return std::nullopt;
  return internal::decimal::ORLFAmountReader(*text).read();
}

}  // namespace ORLFoundation
