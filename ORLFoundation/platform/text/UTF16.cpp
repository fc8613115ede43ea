
#include <ORLFoundation/platform/text/UTF16.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <cstddef>
#include <cstdint>

namespace ORLFoundation::internal::text {
namespace {

constexpr std::size_t kLongestText = std::size_t{1} << 29;

}  // namespace

icu::UnicodeString utf16Of(std::string_view text) {
  if (text.size() >= kLongestText)
    throw NSException(NSInvalidArgumentException, "The text is too long.");
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string utf8Of(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes);
}

}  // namespace ORLFoundation::internal::text
