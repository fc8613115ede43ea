

#include <ORLFoundation/platform/value/internal/PercentEscapes.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>

namespace ORLFoundation::internal::value {

bool isPercentEscapeAt(std::string_view text, std::size_t index) noexcept {
  return text[index] == '%' && base::hexByteAt(text, index + 1).has_value();
}

std::string withoutPercentEscapes(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = text[i] == '%' ? base::hexByteAt(text, i + 1) : std::nullopt;
    if (byte) {
      out += static_cast<char>(*byte);
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace ORLFoundation::internal::value
