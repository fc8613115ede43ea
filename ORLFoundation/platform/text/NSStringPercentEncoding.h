/// Texts with percent escapes, as addresses carry them: a percent sign and two hexadecimal digits
/// for each byte of a character's UTF-8.
///
///     stringByAddingPercentEncodingWithAllowedCharacters("a b", *URLQueryAllowedCharacterSet());
///     stringByRemovingPercentEncoding("a%20b");   // "a b"
#pragma once

#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// `URLQueryAllowedCharacterSet`  Letters and digits of ASCII and - . _ ~ ! $ & ' ( ) * + , ; = :
/// @ / ? , those that a query may hold as they are.
[[nodiscard]] const std::shared_ptr<NSCharacterSet>& URLQueryAllowedCharacterSet();

/// `stringByAddingPercentEncodingWithAllowedCharacters:`  The text with escapes, in capitals, for
/// what is not in the set, and for all that is not ASCII. Broken bytes stand for U+FFFD.
[[nodiscard]] std::string stringByAddingPercentEncodingWithAllowedCharacters(
    std::string_view text, const NSCharacterSet& withAllowedCharacters);

/// `stringByRemovingPercentEncoding`  The text with its escapes resolved; a "+" stays. nil where a
/// percent sign has no two digits behind it, and where the bytes are no UTF-8.
[[nodiscard]] std::optional<std::string> stringByRemovingPercentEncoding(std::string_view text);

}  // namespace ORLFoundation
