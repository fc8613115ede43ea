
#include <ORLFoundation/web/logging/internal/ResolvedText.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF16.h>
#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace ORLFoundation::internal::logging {
namespace {

/// What a letter behind a backslash stands for; any other character stands for itself.
char plainOfEscape(char c) {
  switch (c) {
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      return c;
  }
}

/// The next percent sign, or plus where that counts; npos where there is none.
std::size_t nextSign(std::string_view text, std::size_t at, bool takesPlus) {
  if (!takesPlus) return text.find('%', at);
  while (at < text.size() && text[at] != '%' && text[at] != '+') ++at;
  return at < text.size() ? at : std::string_view::npos;
}

/// The unit of UTF-16 that "\u" and four digits at an index name.
std::optional<char32_t> unitAt(std::string_view text, std::size_t at) {
  if (at > text.size() || text.substr(at, 2) != R"(\u)") return std::nullopt;
  const auto high = base::hexByteAt(text, at + 2);
  const auto low = base::hexByteAt(text, at + 4);
  if (!high || !low) return std::nullopt;
  return static_cast<char32_t>(*high * 256 + *low);
}

}  // namespace

bool ResolvedText::mayHold(std::string_view text, Escapes escapes) noexcept {
  const auto has = [text](char c) { return text.find(c) != std::string_view::npos; };
  if (escapes == Escapes::JSON) return has('\\');
  return has('%') || (escapes == Escapes::PercentAndPlus && has('+'));
}

ResolvedText::ResolvedText(std::string_view text, Escapes escapes) : sourceLength_(text.size()) {
  bytes_.reserve(text.size());
  if (escapes == Escapes::JSON) {
    readJSON(text);
  } else {
    readPercent(text, escapes == Escapes::PercentAndPlus);
  }
}

void ResolvedText::addPlain(std::string_view text, std::size_t begin, std::size_t end) {
  if (begin == end) return;
  runs_.push_back({bytes_.size(), begin, 0});
  bytes_ += text.substr(begin, end - begin);
}

void ResolvedText::addEscape(std::string_view bytes, std::size_t source, std::size_t length) {
  runs_.push_back({bytes_.size(), source, length});
  bytes_ += bytes;
}

void ResolvedText::readPercent(std::string_view text, bool takesPlus) {
  std::size_t plain = 0;
  for (std::size_t at = 0; (at = nextSign(text, at, takesPlus)) != std::string_view::npos;) {
    const auto byte = text[at] == '%' ? base::hexByteAt(text, at + 1) : std::nullopt;
    if (text[at] == '%' && !byte) {
      ++at;
      continue;
    }
    addPlain(text, plain, at);
    const char value = byte ? static_cast<char>(*byte) : ' ';
    const std::size_t length = byte ? 3 : 1;
    addEscape({&value, 1}, at, length);
    plain = at += length;
  }
  addPlain(text, plain, text.size());
}

void ResolvedText::readJSON(std::string_view text) {
  std::size_t plain = 0;
  for (std::size_t at = 0; (at = text.find('\\', at)) != std::string_view::npos;) {
    if (at + 1 == text.size()) break;
    addPlain(text, plain, at);
    plain = at += addCharacter(text, at);
  }
  addPlain(text, plain, text.size());
}

/// Takes the escape at an index; answers how long it is.
std::size_t ResolvedText::addCharacter(std::string_view text, std::size_t at) {
  constexpr std::size_t kShort = 2, kUnit = 6;
  const auto unit = unitAt(text, at);
  if (!unit) {
    const char value = plainOfEscape(text[at + 1]);
    addEscape({&value, 1}, at, kShort);
    return kShort;
  }
  const auto second = base::isLeadingUnit(*unit) ? unitAt(text, at + kUnit) : std::nullopt;
  const bool isPair = second && base::isTrailingUnit(*second);
  std::string character;
  base::appendUTF8(character, isPair ? base::codePointOfUnits(*unit, *second) : *unit);
  const std::size_t length = isPair ? 2 * kUnit : kUnit;
  addEscape(character, at, length);
  return length;
}

const ResolvedText::Run& ResolvedText::runAt(std::size_t at) const {
  const auto next = std::partition_point(runs_.begin(), runs_.end(),
                                         [at](const Run& run) { return run.at <= at; });
  return *std::prev(next);
}

Place ResolvedText::sourceOf(Place place) const {
  const Run& first = runAt(place.begin);
  const Run& last = runAt(place.end - 1);
  const std::size_t begin =
      first.escapeLength > 0 ? first.source : first.source + (place.begin - first.at);
  const std::size_t end =
      last.source + (last.escapeLength > 0 ? last.escapeLength : place.end - last.at);
  return {begin, end};
}

std::size_t ResolvedText::bytesBefore(std::size_t source) const {
  if (source >= sourceLength_) return bytes_.size();
  const auto next = std::partition_point(runs_.begin(), runs_.end(),
                                         [source](const Run& run) { return run.source <= source; });
  if (next == runs_.begin()) return 0;
  const Run& run = *std::prev(next);
  return run.escapeLength > 0 ? run.at : run.at + (source - run.source);
}

}  // namespace ORLFoundation::internal::logging
