
#include <ORLFoundation/platform/crypto/CommonCrypto.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;

CCCryptData request(CCOperation operation, const Bytes& key, const Bytes& input, Bytes& output) {
  return {.operation = operation,
          .algorithm = kCCAlgorithmAES,
          .options = kCCOptionPKCS7Padding,
          .key = key,
          .initializationVector = {},
          .input = input,
          .output = output};
}

TEST(CommonCrypto, RefusesWhatItDoesNotOffer) {
  const Bytes key(16), input(16);
  Bytes output(32);
  std::size_t moved = 9;
  const auto statusOf = [&](auto change) {
    CCCryptData data = request(kCCEncrypt, key, input, output);
    change(data);
    return CCCrypt(data, moved);
  };
  EXPECT_EQ(statusOf([](CCCryptData&) {}), kCCSuccess);
  EXPECT_EQ(moved, 32U);
  EXPECT_EQ(statusOf([](CCCryptData& d) { d.operation = static_cast<CCOperation>(2); }),
            kCCUnimplemented);
  EXPECT_EQ(moved, 0U);
  EXPECT_EQ(statusOf([](CCCryptData& d) { d.algorithm = static_cast<CCAlgorithm>(1); }),
            kCCUnimplemented);
  EXPECT_EQ(statusOf([](CCCryptData& d) { d.options = 2; }), kCCUnimplemented);
  EXPECT_EQ(statusOf([](CCCryptData& d) { d.options = 3; }), kCCUnimplemented);
  EXPECT_EQ(statusOf([&](CCCryptData& d) { d.key = d.key.first(15); }), kCCParamError);
  EXPECT_EQ(statusOf([&](CCCryptData& d) { d.initializationVector = d.key.first(8); }),
            kCCParamError);
  EXPECT_EQ(statusOf([&](CCCryptData& d) { d.output = d.output.first(31); }), kCCBufferTooSmall);
}

TEST(CommonCrypto, DecryptsWholeBlocksAlone) {
  const Bytes key(16, 5), plain{1, 2, 3};
  Bytes sealed(19), opened(16);
  std::size_t moved = 0;
  ASSERT_EQ(CCCrypt(request(kCCEncrypt, key, plain, sealed), moved), kCCSuccess);
  ASSERT_EQ(moved, 16U);
  sealed.resize(moved);
  ASSERT_EQ(CCCrypt(request(kCCDecrypt, key, sealed, opened), moved), kCCSuccess);
  EXPECT_EQ(Bytes(opened.begin(), opened.begin() + static_cast<std::ptrdiff_t>(moved)), plain);
  sealed.pop_back();
  EXPECT_EQ(CCCrypt(request(kCCDecrypt, key, sealed, opened), moved), kCCAlignmentError);
  Bytes none;
  EXPECT_EQ(CCCrypt(request(kCCDecrypt, key, none, none), moved), kCCDecodeError);
}

TEST(CommonCrypto, KeepsPaddingAndWholeBlocksWithoutOptions) {
  const Bytes key(16, 5), plain{1, 2, 3};
  Bytes sealed(19), opened(16), again(16);
  std::size_t moved = 0;
  ASSERT_EQ(CCCrypt(request(kCCEncrypt, key, plain, sealed), moved), kCCSuccess);
  sealed.resize(moved);
  const auto run = [&](CCOperation operation, const Bytes& input, Bytes& output) {
    CCCryptData data = request(operation, key, input, output);
    data.options = 0;
    return CCCrypt(data, moved);
  };
  EXPECT_EQ(run(kCCDecrypt, sealed, opened), kCCSuccess);
  EXPECT_EQ(moved, 16U);
  Bytes padded(16, 13);
  std::copy(plain.begin(), plain.end(), padded.begin());
  EXPECT_EQ(opened, padded);
  EXPECT_EQ(run(kCCEncrypt, opened, again), kCCSuccess);
  EXPECT_EQ(again, sealed);
  EXPECT_EQ(run(kCCEncrypt, plain, again), kCCAlignmentError);
  EXPECT_EQ(run(kCCDecrypt, plain, again), kCCAlignmentError);
  Bytes none;
  EXPECT_EQ(run(kCCDecrypt, none, none), kCCSuccess);
  EXPECT_EQ(moved, 0U);
}

TEST(CommonCrypto, LeavesNothingOfAPlainTextWhosePaddingIsDamaged) {
  const Bytes key(16, 5), plain(64, 'p');
  Bytes sealed(80), opened(64);
  std::size_t moved = 0;
  ASSERT_EQ(CCCrypt(request(kCCEncrypt, key, plain, sealed), moved), kCCSuccess);
  sealed.resize(64);  // the last block of text is no padding
  EXPECT_EQ(CCCrypt(request(kCCDecrypt, key, sealed, opened), moved), kCCDecodeError);
  EXPECT_EQ(moved, 0U);
  EXPECT_EQ(opened, Bytes(64));
}

TEST(CommonCrypto, DerivesNoKeysWithoutRoundsLengthOrAKnownFunction) {
  const Bytes salt{1, 2};
  Bytes key(4, 9);
  EXPECT_EQ(CCKeyDerivationPBKDF(kCCPBKDF2, "p", salt, kCCPRFHmacAlgSHA1, 0, key), kCCParamError);
  EXPECT_EQ(CCKeyDerivationPBKDF(kCCPBKDF2, "p", salt, kCCPRFHmacAlgSHA1, 1, {}), kCCParamError);
  EXPECT_EQ(
      CCKeyDerivationPBKDF(static_cast<CCPBKDFAlgorithm>(1), "p", salt, kCCPRFHmacAlgSHA1, 1, key),
      kCCUnimplemented);
  EXPECT_EQ(
      CCKeyDerivationPBKDF(kCCPBKDF2, "p", salt, static_cast<CCPseudoRandomAlgorithm>(2), 1, key),
      kCCUnimplemented);
  EXPECT_EQ(key, Bytes(4, 9));
}

TEST(CommonCrypto, ComparesByContent) {
  const Bytes some{1, 2, 3}, same{1, 2, 3}, other{1, 2, 4}, longer{1, 2, 3, 0};
  EXPECT_TRUE(timingSafeEqual(some, same));
  EXPECT_FALSE(timingSafeEqual(some, other));
  EXPECT_FALSE(timingSafeEqual(some, longer));
  EXPECT_TRUE(timingSafeEqual({}, {}));
}

}  // namespace
}  // namespace ORLFoundation
