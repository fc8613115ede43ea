/// Upper, lower and capitalized forms of a text, by the full mappings of Unicode: one character may
/// become several ("straße" is "STRASSE" in upper case).
///
///     capitalizedString("o'neil of 3rd place");  // "O'neil Of 3Rd Place"
///
/// Broken bytes become U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace ORLFoundation {

/// `uppercaseString`  By no language's own rules.
[[nodiscard]] std::string uppercaseString(std::string_view text);
/// `lowercaseString`  A capital sigma at the end of a word becomes the final one.
[[nodiscard]] std::string lowercaseString(std::string_view text);
/// `capitalizedString`  Each run of letters begins with its title-case form and goes on in lower
/// case. Apostrophes, marks and modifiers stand inside a run; everything else, digits and hyphens
/// among them, ends it: "jean-luc" is "Jean-Luc", "it's" is "It's", "3rd" is "3Rd".
[[nodiscard]] std::string capitalizedString(std::string_view text);
/// `capitalizedStringWithLocale:`  The same by the rules of the locale's language: "i" begins with
/// a dotted capital in Turkish.
[[nodiscard]] std::string capitalizedStringWithLocale(std::string_view text,
                                                      std::string_view localeIdentifier);

}  // namespace ORLFoundation
