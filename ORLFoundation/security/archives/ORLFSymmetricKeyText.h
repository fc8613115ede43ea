/// The bytes of keys, in and out as text.
#pragma once

#include <ORLFoundation/platform/crypto/SymmetricKey.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <optional>
#include <string_view>

namespace ORLFoundation {

/// `data`  The key's bytes, wiped with the key.
[[nodiscard]] NSData data(const SymmetricKey& key);
/// `init(base64EncodedString:)`  A key from Base64 text. nil for a text without bytes and for every
/// other one than an encoder writes: other characters, line ends among them, a length that is no
/// multiple of four, bits behind the last byte.
[[nodiscard]] std::optional<SymmetricKey> initBase64EncodedString(std::string_view text);

}  // namespace ORLFoundation
