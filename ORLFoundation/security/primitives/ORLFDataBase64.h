/// Data as Base64 text and back, by the rules of NewBase64.h.
#pragma once

#include <ORLFoundation/platform/value/NSData.h>

#include <string>
#include <string_view>

namespace ORLFoundation {

/// `dataFromBase64String:`  What `NewBase64Decode` reads in a text; a text that is not ASCII holds
/// nothing.
[[nodiscard]] NSData dataFromBase64String(std::string_view string);
/// `base64EncodedString`  In lines of 64 characters.
[[nodiscard]] std::string base64EncodedString(const NSData& data);
/// `base64EncodedStringWithLineBreaks:`  The same, or in one line.
[[nodiscard]] std::string base64EncodedStringWithLineBreaks(const NSData& data, bool lineBreaks);

}  // namespace ORLFoundation
