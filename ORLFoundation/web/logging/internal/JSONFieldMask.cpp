
#include <ORLFoundation/web/logging/internal/JSONFieldMask.h>

#include <ORLFoundation/platform/base/UTF8.h>

#include <array>
#include <cstring>

namespace ORLFoundation::internal::logging {
namespace {

/// The characters with the property White_Space, which is what \s stands for.
constexpr bool isWhiteSpace(char32_t c) noexcept {
  return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

constexpr std::array<bool, 256> makeEnds() {
  std::array<bool, 256> ends{};
  for (const char c : {',', ']', '}'}) ends[static_cast<unsigned char>(c)] = true;
  return ends;
}
constexpr std::array<bool, 256> kEndsValue = makeEnds();

std::size_t behindWhiteSpace(std::string_view text, std::size_t at) {
  while (at < text.size()) {
    const base::UTF8Character first = base::firstUTF8Character(text.substr(at));
    if (first.isBroken || !isWhiteSpace(first.codePoint)) break;
    at += first.length;
  }
  return at;
}

std::size_t endOfValue(std::string_view text, std::size_t at) {
  while (at < text.size() && !kEndsValue[static_cast<unsigned char>(text[at])]) ++at;
  return at;
}

}  // namespace

JSONFieldMask::JSONFieldMask(std::string_view fieldName, std::string_view replacementValue)
    : key_('"' + std::string(fieldName) + '"'), value_('"' + std::string(replacementValue) + '"') {}

/// Behind the colon of the next key at or after an index; npos where there is none.
std::size_t JSONFieldMask::endOfKey(std::string_view text, std::size_t from) const {
  while (from < text.size()) {
    // Unlike the search of a view, this takes linear time whatever the key.
    const void* found = ::memmem(text.data() + from, text.size() - from, key_.data(), key_.size());
    if (found == nullptr) break;
    const auto key = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
    const std::size_t colon = behindWhiteSpace(text, key + key_.size());
    if (colon < text.size() && text[colon] == ':') return colon + 1;
    from = key + 1;
  }
  return std::string_view::npos;
}

std::string JSONFieldMask::process(std::string_view text) const {
  std::string masked;
  masked.reserve(text.size());
  std::size_t taken = 0;
  for (std::size_t value = 0; (value = endOfKey(text, taken)) != std::string_view::npos;) {
    masked += text.substr(taken, value - taken);
    masked += value_;
    taken = endOfValue(text, value);
  }
  masked += text.substr(taken);
  return masked;
}

}  // namespace ORLFoundation::internal::logging
