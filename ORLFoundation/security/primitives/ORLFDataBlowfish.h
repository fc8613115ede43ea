/// Data under Blowfish, in place: every whole block of 8 bytes by itself, its two words in the
/// order of bytes of little-endian machines. The bytes behind the last whole block stay plain. For
/// data that was written so; it hides neither equal blocks nor changes.
#pragma once

#include <ORLFoundation/platform/object/NSMutableData.h>

#include <string_view>

namespace ORLFoundation {

/// `encryptDataWithBlowfishKey:`  The key is the text's UTF-8 bytes up to its first zero byte; an
/// empty one changes nothing.
void encryptDataWithBlowfishKey(NSMutableData& data, std::string_view key);
/// `decyrptDataWithBlowfishKey:`  The inverse.
void decyrptDataWithBlowfishKey(NSMutableData& data, std::string_view key);

}  // namespace ORLFoundation
