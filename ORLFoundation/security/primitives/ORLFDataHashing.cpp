#include <ORLFoundation/security/primitives/ORLFDataHashing.h>

#include <ORLFoundation/platform/crypto/CommonCrypto.h>

namespace ORLFoundation {

NSData orlfSHAHash(const NSData& data) {
  return NSData(std::span<const std::uint8_t>(CC_SHA1(data.bytes())));
}

NSData orlfSHAHash(std::string_view string) {
  return orlfSHAHash(NSData(string.substr(0, string.find('\0'))));
}

}  // namespace ORLFoundation
