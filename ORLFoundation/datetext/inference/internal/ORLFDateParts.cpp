#include <ORLFoundation/datetext/inference/internal/ORLFDateParts.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSStringTrimming.h>

#include <algorithm>
#include <cstddef>

namespace ORLFoundation::internal::inference {
namespace {

struct Place {
  std::size_t at, length;
  char32_t character;
};

std::optional<Place> firstMember(std::string_view text, const NSCharacterSet& set) noexcept {
  for (std::size_t at = 0; at < text.size();) {
    const base::UTF8Character first = base::firstUTF8Character(text.substr(at));
    if (set.longCharacterIsMember(first.codePoint)) return Place{at, first.length, first.codePoint};
    at += first.length;
  }
  return std::nullopt;
}

std::string_view behind(std::string_view text, const Place& place) noexcept {
  return text.substr(place.at + place.length);
}

}  // namespace

bool DateParts::allHoldDigits() const noexcept {
  return std::all_of(texts.begin(), texts.end(), [](std::string_view part) {
    return firstMember(part, *NSCharacterSet::decimalDigitCharacterSet()).has_value();
  });
}

std::optional<DateParts> splitDate(std::string_view text,
                                   const NSCharacterSet& separators) noexcept {
  const NSCharacterSet& space = *NSCharacterSet::whitespaceAndNewlineCharacterSet();
  text = stringByTrimmingCharactersInSet(text, space);
  const std::optional<Place> first = firstMember(text, separators);
  if (!first) return std::nullopt;
  const std::string_view rest = stringByTrimmingCharactersInSet(
      stringByTrimmingCharactersInSet(behind(text, *first), space), separators);
  const std::optional<Place> second = firstMember(rest, separators);
  if (!second) return std::nullopt;
  return DateParts{{text.substr(0, first->at), rest.substr(0, second->at), behind(rest, *second)},
                   second->character};
}

}  // namespace ORLFoundation::internal::inference
