
#include <ORLFoundation/security/primitives/ORLFMD5.h>

#include <ORLFoundation/platform/base/Bytes.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

using ORLFoundation::internal::base::storeLittle;

constexpr std::size_t kBlock = 64, kWords = 16, kLengthAt = 56;

/// The integer part of 2^32 times the sine of 1 to 64.
constexpr std::array<std::uint32_t, 64> kSines{
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

struct Words {
  std::uint32_t a, b, c, d;
};

/// Sixteen steps of one kind: step i takes word `first + stride * i` of the block, round and round.
template <class Mix>
void mixRound(Words& words, const std::uint32_t* block, std::size_t round, std::size_t first,
              std::size_t stride, const std::array<int, 4>& turns, Mix mix) {
  for (std::size_t i = 0; i < kWords; ++i) {
    const std::uint32_t sum = words.a + mix(words.b, words.c, words.d) +
                              block[(first + stride * i) % kWords] + kSines[round * kWords + i];
    words = {words.d, words.b + std::rotl(sum, turns[i % 4]), words.b, words.c};
  }
}

/// Words as MD5 reads them, the low byte first.
std::array<std::uint32_t, kWords> wordsOf(const std::uint8_t* bytes) {
  std::array<std::uint32_t, kWords> words{};
  for (std::size_t i = 0; i < kWords; ++i)
    for (int byte = 3; byte >= 0; --byte)
      words[i] = words[i] << 8 | bytes[4 * i + static_cast<std::size_t>(byte)];
  return words;
}

void absorb(ORLFMD5Context& context, const std::uint8_t* block) {
  ORLFMD5Transform(context.state, wordsOf(block).data());
}

}  // namespace

void ORLFMD5Init(ORLFMD5Context* context) {
  *context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, {0, 0}, {}};
}

void ORLFMD5Update(ORLFMD5Context* context, const uint8_t* bytes, uint32_t length) {
  if (length == 0) return;
  std::size_t held = context->bits[0] / 8 % kBlock;
  const std::uint64_t bits =
      (std::uint64_t{context->bits[1]} << 32 | context->bits[0]) + std::uint64_t{length} * 8;
  context->bits[0] = static_cast<std::uint32_t>(bits);
  context->bits[1] = static_cast<std::uint32_t>(bits >> 32);

  std::size_t left = length;
  if (held > 0) {
    const std::size_t taken = std::min(left, kBlock - held);
    std::memcpy(context->block + held, bytes, taken);
    if (held + taken < kBlock) return;
    absorb(*context, context->block);
    bytes += taken;
    left -= taken;
  }
  for (; left >= kBlock; left -= kBlock, bytes += kBlock) absorb(*context, bytes);
  std::memcpy(context->block, bytes, left);
}

void ORLFMD5Transform(uint32_t state[4], const uint32_t block[16]) {
  Words words{state[0], state[1], state[2], state[3]};
  using Word = std::uint32_t;
  mixRound(words, block, 0, 0, 1, {7, 12, 17, 22},
           [](Word x, Word y, Word z) { return (x & y) | (~x & z); });
  mixRound(words, block, 1, 1, 5, {5, 9, 14, 20},
           [](Word x, Word y, Word z) { return (x & z) | (y & ~z); });
  mixRound(words, block, 2, 5, 3, {4, 11, 16, 23},
           [](Word x, Word y, Word z) { return x ^ y ^ z; });
  mixRound(words, block, 3, 0, 7, {6, 10, 15, 21},
           [](Word x, Word y, Word z) { return y ^ (x | ~z); });
  state[0] += words.a;
  state[1] += words.b;
  state[2] += words.c;
  state[3] += words.d;
}

void ORLFMD5Final(uint8_t digest[16], ORLFMD5Context* context) {
  std::array<std::uint8_t, kBlock + 8> tail{0x80};
  const std::size_t held = context->bits[0] / 8 % kBlock;
  const std::size_t padding = (held < kLengthAt ? kLengthAt : kLengthAt + kBlock) - held;
  storeLittle(context->bits[0], tail.data() + padding);
  storeLittle(context->bits[1], tail.data() + padding + 4);
  ORLFMD5Update(context, tail.data(), static_cast<std::uint32_t>(padding + 8));
  for (std::size_t i = 0; i < 4; ++i) storeLittle(context->state[i], digest + 4 * i);
  explicit_bzero(context, sizeof *context);
}

void ORLFMD5(const uint8_t* bytes, uint32_t length, uint8_t digest[16]) {
  ORLFMD5Context context;
  ORLFMD5Init(&context);
  ORLFMD5Update(&context, bytes, length);
  ORLFMD5Final(digest, &context);
}
