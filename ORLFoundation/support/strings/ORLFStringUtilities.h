/// Small operations on texts.
///
///     orlfTitleCase("of mice and men");                       // "Of Mice and Men"
///     orlfContainsComponents("Résumé of Zoë", {"resume", "zoe"});  // true
///     isEmailAddress("user@example.org");                     // true
///
/// Broken bytes in a text stand for U+FFFD unless an operation says otherwise.
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/process/NSOperatingSystemVersion.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// `orlfGenerateUUIDString`  A new random one, as `CFUUIDCreate` and `CFUUIDCreateString` make it:
/// 36 characters, letters in upper case.
[[nodiscard]] std::string orlfGenerateUUIDString();
/// `orlfGenerateUniqueId`  The same.
[[nodiscard]] std::string orlfGenerateUniqueId();

/// `orlfStringWithInteger:`
[[nodiscard]] std::string orlfStringWithInteger(NSInteger integer);
/// `orlfStringWithUnsignedInteger:`
[[nodiscard]] std::string orlfStringWithUnsignedInteger(NSUInteger integer);
/// `orlfStringWithLongLong:`
[[nodiscard]] std::string orlfStringWithLongLong(long long integer);

/// `orlfContainsString:`  Whatever the case. An empty text is in none.
[[nodiscard]] bool orlfContainsString(std::string_view text, std::string_view string);
/// `orlfContainsComponents:`  Whether each text stands behind the end of the one before, whatever
/// case and diacritics. No texts at all are contained in any, an empty one in none.
[[nodiscard]] bool orlfContainsComponents(std::string_view text,
                                          const std::vector<std::string>& components);

/// `orlfStringWithData:encoding:`  nil when the bytes don't fit the encoding, and for one that
/// NSStringEncoding.h does not list.
[[nodiscard]] std::optional<std::string> orlfStringWithData(const NSData& data,
                                                            NSUInteger encoding);
/// `orlfStringWithData:usedEncoding:error:`  Tries UTF-8, Mac Roman, Windows Latin 1 and ASCII.
/// Stores the number of the one that fitted, 0 when none did. Mac Roman takes all bytes, so the two
/// behind it are never reached, nil is never given and the error never filled; the order is
/// required.
[[nodiscard]] std::optional<std::string> orlfStringWithDataUsedEncoding(
    const NSData& data, NSUInteger* usedEncoding, NSErrorSlot error = nullptr);

/// `orlfStringByBackslashEscapingCharactersInString:`  A backslash before each character of the
/// text that is among the given ones.
[[nodiscard]] std::string orlfStringByBackslashEscapingCharactersInString(
    std::string_view text, std::string_view characters);

/// `orlfCapitalizedStringPreservingCase`  The first character in upper case ("ß" as "SS"), the rest
/// as it is. A text of fewer than two UTF-16 units stays unchanged, so a single letter isn't
/// capitalized; nor is a letter of two units, whose first half is no letter. Both are required.
[[nodiscard]] std::string orlfCapitalizedStringPreservingCase(std::string_view text);
/// `orlfCaseInsensitiveSortCompare:`  By `caseInsensitiveCompare`, and by `compare` on a tie.
[[nodiscard]] NSComparisonResult orlfCaseInsensitiveSortCompare(std::string_view text,
                                                                std::string_view string);

/// `orlfOperatingSystemVersion`  "13.2" is 13, 2, 0. Parts that are no numbers are 0; so is
/// everything when there are more than three.
[[nodiscard]] NSOperatingSystemVersion orlfOperatingSystemVersion(std::string_view text);

/// `orlfTitleCase`  The words capitalized as the locale's language has it (the current locale's
/// when it is nil), but for conjunctions, particles and prepositions of English with fewer than
/// four letters, which stay as they are unless the text begins with them: "cash at bank" is "Cash
/// at Bank", "payment from bank" is "Payment From Bank". NLTagger.h tells what a word is.
[[nodiscard]] std::string orlfTitleCase(std::string_view text,
                                        const std::shared_ptr<NSLocale>& locale = nullptr);

/// `isEmailAddress`  Whether the whole text is one e-mail address, alone or behind "mailto:";
/// NSDataDetector.h tells what it looks like. A text that merely holds an address is none.
[[nodiscard]] bool isEmailAddress(std::string_view text);

}  // namespace ORLFoundation
