#include <ORLFoundation/security/primitives/Blowfish.h>

#include <ORLFoundation/security/primitives/internal/BlowfishTables.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

using ORLFoundation::internal::primitives::ORIG_P;
using ORLFoundation::internal::primitives::ORIG_S;

constexpr std::size_t kRounds = 16;

std::uint32_t scramble(const BLOWFISH_CTX& context, std::uint32_t x) {
  const std::uint32_t sum = context.S[0][x >> 24] + context.S[1][x >> 16 & 0xFF];
  return (sum ^ context.S[2][x >> 8 & 0xFF]) + context.S[3][x & 0xFF];
}

/// The next four bytes of a key that goes round.
std::uint32_t keyWord(const std::uint8_t* key, std::size_t length, std::size_t& at) {
  std::uint32_t word = 0;
  for (int i = 0; i < 4; ++i) {
    word = word << 8 | key[at];
    at = (at + 1) % length;
  }
  return word;
}

}  // namespace

void Blowfish_Init(BLOWFISH_CTX* ctx, const uint8_t* key, int32_t keyLen) {
  std::copy(ORIG_P.begin(), ORIG_P.end(), ctx->P);
  for (std::size_t box = 0; box < ORIG_S.size(); ++box)
    std::copy(ORIG_S[box].begin(), ORIG_S[box].end(), ctx->S[box]);
  std::size_t at = 0;
  if (keyLen > 0)
    for (std::uint32_t& word : ctx->P) word ^= keyWord(key, static_cast<std::size_t>(keyLen), at);

  std::uint32_t left = 0;
  std::uint32_t right = 0;
  const auto fill = [&](std::uint32_t* words, std::size_t count) {
    for (std::size_t i = 0; i < count; i += 2) {
      Blowfish_Encrypt(ctx, &left, &right);
      words[i] = left;
      words[i + 1] = right;
    }
  };
  fill(ctx->P, std::size(ctx->P));
  for (auto& box : ctx->S) fill(box, std::size(box));
}

void Blowfish_Encrypt(const BLOWFISH_CTX* ctx, uint32_t* xl, uint32_t* xr) {
  std::uint32_t left = *xl;
  std::uint32_t right = *xr;
  for (std::size_t round = 0; round < kRounds; ++round) {
    left ^= ctx->P[round];
    right ^= scramble(*ctx, left);
    std::swap(left, right);
  }
  *xl = right ^ ctx->P[kRounds + 1];
  *xr = left ^ ctx->P[kRounds];
}

void Blowfish_Decrypt(const BLOWFISH_CTX* ctx, uint32_t* xl, uint32_t* xr) {
  std::uint32_t left = *xl;
  std::uint32_t right = *xr;
  for (std::size_t round = kRounds + 1; round > 1; --round) {
    left ^= ctx->P[round];
    right ^= scramble(*ctx, left);
    std::swap(left, right);
  }
  *xl = right ^ ctx->P[0];
  *xr = left ^ ctx->P[1];
}

int32_t Blowfish_Test(BLOWFISH_CTX* ctx) {
  constexpr std::uint32_t kPlainLeft = 1, kPlainRight = 2;
  constexpr std::uint32_t kCipherLeft = 0xDF333FD2, kCipherRight = 0x30A71BB4;
  constexpr std::uint8_t kKey[] = {'T', 'E', 'S', 'T', 'K', 'E', 'Y'};
  std::uint32_t left = kPlainLeft;
  std::uint32_t right = kPlainRight;
  Blowfish_Init(ctx, kKey, static_cast<std::int32_t>(std::size(kKey)));
  Blowfish_Encrypt(ctx, &left, &right);
  if (left != kCipherLeft || right != kCipherRight) return -1;
  Blowfish_Decrypt(ctx, &left, &right);
  return left == kPlainLeft && right == kPlainRight ? 0 : -1;
}
