
#include <ORLFoundation/platform/language/internal/LinkCharacters.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace ORLFoundation::internal::language {
namespace {

constexpr std::size_t kLongestLabel = 63;
constexpr std::size_t kLongestHost = 253;

enum Use : std::uint8_t { kInLabel = 1, kInLocal = 2, kInAddress = 4 };

using base::isLetterOrDigit;

constexpr std::array<std::uint8_t, 128> usesOfASCII() {
  constexpr std::string_view kLocalSigns = "!#$%&'*+-/=?^_`{|}~.";
  constexpr std::string_view kOutsideAddresses = "\"<>";
  std::array<std::uint8_t, 128> uses{};
  for (int c = '!'; c < 0x7F; ++c) {
    auto& use = uses[static_cast<std::size_t>(c)];
    const char sign = static_cast<char>(c);
    if (isLetterOrDigit(sign) || sign == '-') use |= kInLabel;
    if (isLetterOrDigit(sign) || kLocalSigns.find(sign) != kLocalSigns.npos) use |= kInLocal;
    if (kOutsideAddresses.find(sign) == kOutsideAddresses.npos) use |= kInAddress;
  }
  return uses;
}
constexpr std::array<std::uint8_t, 128> kUsesOfASCII = usesOfASCII();

constexpr std::uint32_t kWordMask = U_GC_L_MASK | U_GC_M_MASK | U_GC_ND_MASK;

std::uint8_t usesOf(UChar32 character) {
  if (u_isUWhiteSpace(character) || u_iscntrl(character)) return 0;
  const bool isWord = (U_GET_GC_MASK(character) & kWordMask) != 0;
  return static_cast<std::uint8_t>(kInAddress | (isWord ? kInLabel | kInLocal : 0));
}

std::size_t lengthOfCharacter(std::string_view text, std::size_t at, Use use) {
  if (at >= text.size()) return 0;
  if (base::isASCII(text[at]))
    return (kUsesOfASCII[static_cast<unsigned char>(text[at])] & use) != 0 ? 1 : 0;
  const base::UTF8Character character = base::firstUTF8Character(text.substr(at));
  if (character.isBroken) return 0;
  return (usesOf(static_cast<UChar32>(character.codePoint)) & use) != 0 ? character.length : 0;
}

std::size_t endOfLabel(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
  while (const std::size_t length = lengthOfLabelCharacter(text, end)) end += length;
  return end;
}

bool isLabel(std::string_view label) {
  return !label.empty() && label.size() <= kLongestLabel && label.front() != '-' &&
         label.back() != '-';
}

std::string_view lastLabel(std::string_view host) {
  const std::size_t point = host.rfind('.');
  return point == host.npos ? std::string_view() : host.substr(point + 1);
}

/// How many letters a label has; marks on them are none.
std::size_t lettersOf(std::string_view label) {
  std::size_t letters = 0;
  while (!label.empty()) {
    const base::UTF8Character first = base::firstUTF8Character(label);
    const auto character = static_cast<UChar32>(first.codePoint);
    if (!first.isBroken && (U_GET_GC_MASK(character) & U_GC_L_MASK) != 0) ++letters;
    label.remove_prefix(first.length);
  }
  return letters;
}

}  // namespace

std::size_t lengthOfLocalCharacter(std::string_view text, std::size_t at) {
  return lengthOfCharacter(text, at, kInLocal);
}

std::size_t lengthOfLabelCharacter(std::string_view text, std::size_t at) {
  return lengthOfCharacter(text, at, kInLabel);
}

std::size_t lengthOfAddressCharacter(std::string_view text, std::size_t at) {
  return lengthOfCharacter(text, at, kInAddress);
}

std::size_t endOfHost(std::string_view text, std::size_t begin) {
  std::size_t label = begin;
  std::size_t end = endOfLabel(text, label);
  while (isLabel(text.substr(label, end - label)) && end < text.size() && text[end] == '.' &&
         lengthOfLabelCharacter(text, end + 1) != 0) {
    label = end + 1;
    end = endOfLabel(text, label);
  }
  while (end > label && text[end - 1] == '-') --end;
  const bool fits = isLabel(text.substr(label, end - label)) && end - begin <= kLongestHost;
  return fits ? end : begin;
}

bool hasTopLevelDomain(std::string_view host) {
  constexpr std::string_view kEncoded = "xn--";
  const std::string_view label = lastLabel(host);
  if (base::equalsLower(label.substr(0, kEncoded.size()), kEncoded)) return true;
  const bool hasOther =
      std::any_of(label.begin(), label.end(), [](char c) { return base::isDigit(c) || c == '-'; });
  return lettersOf(label) >= 2 && !hasOther;
}

bool hasCommonTopLevelDomain(std::string_view host) {
  constexpr std::string_view kCommon[] = {"com", "org", "net", "edu", "gov", "mil", "int", "info",
                                          "biz", "io",  "co",  "app", "dev", "de",  "uk",  "fr",
                                          "eu",  "ca",  "au",  "jp",  "ch",  "nl",  "it"};
  const std::string_view label = lastLabel(host);
  return std::any_of(std::begin(kCommon), std::end(kCommon),
                     [label](std::string_view known) { return base::equalsLower(label, known); });
}

}  // namespace ORLFoundation::internal::language
