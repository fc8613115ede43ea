#include "web/field_mask.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <algorithm>

namespace orlftool {
namespace {

constexpr std::string_view kMask = "***";
constexpr std::string_view kJSONBlanks = " \t\r\n";
// What ends a field's name, looking back, and what ends its value.
constexpr std::string_view kBeforeNames = "&?;#= \t\r\n\"'<>{},()";
constexpr std::string_view kAfterValues = "&#\r\n\"'<>";

using ORLFoundation::internal::base::hexDigitValue;
using ORLFoundation::internal::base::lowerASCII;

/// Behind the closing quote of the text that begins at a quote; the end where there is none.
std::size_t endOfJSONText(std::string_view text, std::size_t at) {
  for (++at; at < text.size(); ++at) {
    if (text[at] == '"') return at + 1;
    if (text[at] == '\\') ++at;
  }
  return text.size();
}

std::size_t withoutBlanks(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(kJSONBlanks, at), text.size());
}

/// What the inside of a JSON text means; characters beyond ASCII that are escaped are left out.
std::string meaningOfJSONText(std::string_view inside) {
  constexpr std::size_t kDigits = 4;
  std::string meaning;
  for (std::size_t at = 0; at < inside.size(); ++at) {
    if (inside[at] != '\\' || at + 1 == inside.size()) {
      meaning += inside[at];
    } else if (inside[++at] != 'u') {
      meaning += inside[at];
    } else {
      int code = 0;
      for (std::size_t digits = 0; digits < kDigits && at + 1 < inside.size(); ++digits) {
        const int digit = hexDigitValue(inside[at + 1]);
        if (digit < 0) break;
        code = code * 16 + digit;
        ++at;
      }
      if (code > 0 && code < 0x80) meaning += static_cast<char>(code);
    }
  }
  return meaning;
}

/// Behind the list or object that begins here.
std::size_t endOfJSONGroup(std::string_view text, std::size_t at) {
  std::size_t depth = 0;
  while (at < text.size()) {
    const char c = text[at];
    if (c == '"') {
      at = endOfJSONText(text, at);
      continue;
    }
    ++at;
    if (c == '{' || c == '[') ++depth;
    if ((c == '}' || c == ']') && --depth == 0) return at;
  }
  return text.size();
}

std::size_t endOfJSONValue(std::string_view text, std::size_t at) {
  if (at == text.size()) return at;
  if (text[at] == '"') return endOfJSONText(text, at);
  if (text[at] == '{' || text[at] == '[') return endOfJSONGroup(text, at);
  return std::min(text.find_first_of(",}] \t\r\n", at), text.size());
}

/// What a name in a form or query means.
std::string meaningOfFormName(std::string_view name) {
  std::string meaning;
  for (std::size_t at = 0; at < name.size(); ++at) {
    const bool isEscape = name[at] == '%' && at + 2 < name.size() &&
                          hexDigitValue(name[at + 1]) >= 0 && hexDigitValue(name[at + 2]) >= 0;
    if (isEscape) {
      meaning += static_cast<char>(hexDigitValue(name[at + 1]) * 16 + hexDigitValue(name[at + 2]));
      at += 2;
    } else {
      meaning += name[at] == '+' ? ' ' : name[at];
    }
  }
  return meaning;
}

}  // namespace

FieldMask::FieldMask(const std::vector<std::string>& names) {
  constexpr std::size_t kEscapedCharacter = 6, kQuotes = 2;
  for (const std::string& name : names) {
    names_.push_back(lowerASCII(name));
    mostNameBytes_ = std::max(mostNameBytes_, name.size() * kEscapedCharacter + kQuotes);
  }
}

bool FieldMask::isMasked(std::string_view name) const {
  const std::string text = lowerASCII(name);
  return std::any_of(names_.begin(), names_.end(), [&](const std::string& each) {
    return text == each || text.ends_with("[" + each + "]");
  });
}

std::optional<std::string> FieldMask::process(std::optional<std::string> string) {
  if (!string) return std::nullopt;
  return withoutFormValues(withoutJSONValues(*string));
}

/// Every quote may be the first of a name, also one that ends a text or is escaped in one: who
/// writes a quote too many before the field does not show its value by it. Of escaped ones names of
/// no more than some length are looked at, so that the time stays in proportion to the text. The
/// mask ends with a quote, whatever the value ended with, and what follows is read as it will be
/// read with the mask in front: masking again changes nothing.
std::string FieldMask::withoutJSONValues(std::string_view text) const {
  std::string masked;
  std::size_t kept = 0, end = 0, colon = 0, at = text.find('"');
  while (at != std::string_view::npos) {
    const bool isEscaped = at + 1 < end;
    if (!isEscaped) {
      end = endOfJSONText(text, at);
      colon = withoutBlanks(text, end);
    }
    const bool isName = colon < text.size() && text[colon] == ':' &&
                        (!isEscaped || end - at <= mostNameBytes_) &&
                        isMasked(meaningOfJSONText(text.substr(at + 1, end - at - 2)));
    if (!isName) {
      at = text.find('"', at + 1);
      continue;
    }
    const std::size_t value = withoutBlanks(text, colon + 1);
    masked += text.substr(kept, value - kept);
    masked += "\"" + std::string(kMask) + "\"";
    kept = endOfJSONValue(text, value);
    at = kept - 1;
  }
  return masked + std::string(text.substr(kept));
}

std::string FieldMask::withoutFormValues(std::string_view text) const {
  std::string masked;
  std::size_t kept = 0;
  for (std::size_t at = text.find('='); at != std::string_view::npos; at = text.find('=', at)) {
    const std::size_t before =
        at == 0 ? std::string_view::npos : text.find_last_of(kBeforeNames, at - 1);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const bool isName = isMasked(meaningOfFormName(text.substr(begin, at - begin)));
    ++at;
    if (!isName) continue;
    masked += text.substr(kept, at - kept);
    masked += kMask;
    at = std::min(text.find_first_of(kAfterValues, at), text.size());
    kept = at;
  }
  return masked + std::string(text.substr(kept));
}

}  // namespace orlftool
