
#include <ORLFoundation/platform/plist/internal/UnicodeText.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/plist/PropertyListTable.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace ORLFoundation::internal::plist {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

std::int32_t lengthOf(std::size_t length) {
  // A third of the largest length: no conversion makes a text longer than threefold.
  if (length > std::numeric_limits<std::int32_t>::max() / 3)
    throw PropertyListFault("A text is too long.");
  return static_cast<std::int32_t>(length);
}

std::u16string utf16Of(std::string_view text) {
  std::u16string units(text.size(), u'\0');
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), lengthOf(units.size()), &length, text.data(), lengthOf(text.size()),
                &status);
  if (U_FAILURE(status)) throw PropertyListFault("A text is not UTF-8.");
  units.resize(static_cast<std::size_t>(length));
  return units;
}

}  // namespace

void appendFromUTF16BigEndian(std::string& text, std::span<const std::uint8_t> bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t at = 0; at < units.size(); ++at)
    units[at] = static_cast<char16_t>(bytes[2 * at] << 8 | bytes[2 * at + 1]);
  const std::size_t before = text.size();
  text.resize(before + 3 * units.size());
  std::int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(text.data() + before, lengthOf(units.size()) * 3, &length, units.data(),
                     lengthOf(units.size()), kReplacement, nullptr, &status);
  if (U_FAILURE(status)) throw PropertyListFault("A text cannot be read.");
  text.resize(before + static_cast<std::size_t>(length));
}

std::size_t appendAsUTF16BigEndian(std::string& bytes, std::string_view text) {
  const std::u16string units = utf16Of(text);
  bytes.reserve(bytes.size() + 2 * units.size());
  for (const char16_t unit : units) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
  }
  return units.size();
}

void checkUTF8(std::string_view text) {
  if (!base::isASCII(text)) static_cast<void>(utf16Of(text));
}

bool fitsXML(std::string_view text) noexcept {
  const bool hasControls = std::any_of(text.begin(), text.end(), [](char character) {
    return static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n' &&
           character != '\r';
  });
  constexpr std::string_view kNotCharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};
  return !hasControls && text.find(kNotCharacters[0]) == std::string_view::npos &&
         text.find(kNotCharacters[1]) == std::string_view::npos;
}

}  // namespace ORLFoundation::internal::plist
