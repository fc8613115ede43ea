/// Texts as a chart shows them: visible, short enough, with the minus sign of typography.
#pragma once

#include <unicode/unistr.h>

#include <string>
#include <string_view>

#include "chart/drawing.h"

namespace orlftool {

/// The text with every control character and line end written out ("\n", "\u0007"), and broken
/// UTF-8 replaced by U+FFFD: what is left may stand in XML.
[[nodiscard]] std::string visibleText(std::string_view text);
/// The text, or as many of its characters as fit a width with "…" after them.
[[nodiscard]] std::string fittedText(const std::string& text, double width, TextStyle style,
                                     const TextRuler& ruler);
/// "-5" with U+2212, which is as wide as a plus sign and no hyphen.
[[nodiscard]] std::string withTrueMinus(std::string_view number);
[[nodiscard]] std::string utf8(const icu::UnicodeString& text);

}  // namespace orlftool
