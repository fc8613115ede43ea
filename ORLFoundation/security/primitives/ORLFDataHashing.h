/// Digests of data and texts.
#pragma once

#include <ORLFoundation/platform/value/NSData.h>

#include <string_view>

namespace ORLFoundation {

/// `orlfSHAHash`  The SHA-1 digest of the bytes, 20 bytes.
[[nodiscard]] NSData orlfSHAHash(const NSData& data);
/// `orlfSHAHash`  The SHA-1 digest of the text's UTF-8 bytes up to its first zero byte.
[[nodiscard]] NSData orlfSHAHash(std::string_view string);

}  // namespace ORLFoundation
