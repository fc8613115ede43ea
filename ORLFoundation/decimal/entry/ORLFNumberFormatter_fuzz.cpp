// Any bytes as a typed sum, in a style and a locale that the first byte chooses: an answer soon, a
// range within the text, limits as they were.

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation;
  if (size == 0) return 0;
  constexpr std::array kLocales{"en_US", "de_CH", "ar_EG", "hi_IN", "fr_FR"};
  ORLFNumberFormatter formatter;
  formatter.setNumberStyle(static_cast<NSNumberFormatterStyle>(data[0] % 7));
  formatter.setLocale(std::make_shared<NSLocale>(kLocales[data[0] / 7 % kLocales.size()]));
  formatter.setGeneratesDecimalNumbers(data[0] % 2 == 0);
  formatter.setMaximum(1000);
  NSNumberText text(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
  NSRange range = text.range();
  std::optional<NSNumber> value;
  const bool isRead = formatter.getObjectValue(&value, text, &range);
  if (NSMaxRange(range) > text.units().size()) std::abort();
  if (isRead && value && value->compare(1000) == NSOrderedDescending) std::abort();
  if (formatter.maximum() != NSNumber(1000)) std::abort();
  return 0;
}
