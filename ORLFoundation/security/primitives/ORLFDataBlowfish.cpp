#include <ORLFoundation/security/primitives/ORLFDataBlowfish.h>

#include <ORLFoundation/platform/base/Bytes.h>
#include <ORLFoundation/security/primitives/Blowfish.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace ORLFoundation {
namespace {

using internal::base::storeLittle;

constexpr std::size_t kBlock = 8;
/// The schedule reads no more of a key.
constexpr std::size_t kMostKeyBytes = 72;

std::uint32_t loadWord(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

using Cipher = void (*)(const BLOWFISH_CTX*, std::uint32_t*, std::uint32_t*);

void cryptBlocks(NSMutableData& data, std::string_view key, Cipher cipher) {
  key = key.substr(0, key.find('\0'));
  if (key.empty()) return;
  BLOWFISH_CTX schedule;
  Blowfish_Init(&schedule, reinterpret_cast<const std::uint8_t*>(key.data()),
                static_cast<std::int32_t>(std::min(key.size(), kMostKeyBytes)));
  const std::span<std::uint8_t> bytes = data.mutableBytes();
  for (std::size_t at = 0; bytes.size() - at >= kBlock; at += kBlock) {
    std::uint8_t* const block = bytes.data() + at;
    std::uint32_t left = loadWord(block);
    std::uint32_t right = loadWord(block + 4);
    cipher(&schedule, &left, &right);
    storeLittle(left, block);
    storeLittle(right, block + 4);
  }
  explicit_bzero(&schedule, sizeof schedule);
}

}  // namespace

void encryptDataWithBlowfishKey(NSMutableData& data, std::string_view key) {
  cryptBlocks(data, key, Blowfish_Encrypt);
}

void decyrptDataWithBlowfishKey(NSMutableData& data, std::string_view key) {
  cryptBlocks(data, key, Blowfish_Decrypt);
}

}  // namespace ORLFoundation
