#include <ORLFoundation/platform/crypto/AESGCM.h>

#include <ORLFoundation/platform/base/Hexadecimal_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>
#include <ORLFoundation/platform/crypto/SecRandom_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::bytesOfHex;
using orlftest::hexOf;
using orlftest::spanOf;

// Test case 16 that the mode's authors published in 2004.
constexpr std::string_view kKey =
    "feffe9928665731c6d6a8f9467308308feffe9928665731c6d6a8f9467308308";
constexpr std::string_view kMessage =
    "d9313225f88406e5a55909c5aff5269a86a7a9531534f7da2e4c303d8a318a721c3c0c95956809532fcf0e2449a6b5"
    "25"
    "b16aedf5aa0de657ba637b39";
constexpr std::string_view kHeader = "feedfacedeadbeeffeedfacedeadbeefabaddad2";

AES::GCM::SealedBox sealedExample() {
  std::array<std::uint8_t, AES::GCM::kNonceBytes> nonce{};
  const auto bytes = bytesOfHex("cafebabefacedbaddecaf888");
  std::copy(bytes.begin(), bytes.end(), nonce.begin());
  return AES::GCM::seal(bytesOfHex(kMessage), SymmetricKey(bytesOfHex(kKey)), nonce,
                        bytesOfHex(kHeader))
      .value();
}

TEST(AESGCM, SealsThePublishedExample) {
  const auto box = sealedExample();
  EXPECT_EQ(hexOf(box.ciphertext),
            "522dc1f099567d07f47f37a32a84427d643a8cdcbfe5c0c97598a2bd2555d1aa8cb08e48590dbb3da7b08b"
            "10568288"
            "38c5f61e6393ba7a0abcc9f662");
  EXPECT_EQ(hexOf(box.tag), "76fc6ece0f4e1768cddf8853bb2d551b");
}

TEST(AESGCM, OpensWhatItSealedAndNothingElse) {
  const auto box = sealedExample();
  const SymmetricKey key(bytesOfHex(kKey));
  const auto header = bytesOfHex(kHeader);
  EXPECT_EQ(AES::GCM::open(box, key, header), NSData(bytesOfHex(kMessage)));
  for (std::size_t i = 0; i < box.ciphertext.size(); ++i) {
    auto other = box;
    other.ciphertext[i] ^= 1;
    EXPECT_EQ(AES::GCM::open(other, key, header), std::nullopt) << i;
  }
  auto otherTag = box, otherNonce = box;
  otherTag.tag[15] ^= 0x80;
  otherNonce.nonce[0] ^= 1;
  EXPECT_EQ(AES::GCM::open(otherTag, key, header), std::nullopt);
  EXPECT_EQ(AES::GCM::open(otherNonce, key, header), std::nullopt);
  EXPECT_EQ(AES::GCM::open(box, key, {}), std::nullopt);
  EXPECT_EQ(AES::GCM::open(box, SymmetricKey(SymmetricKeySize::bits256), header), std::nullopt);
}

TEST(AESGCM, TakesANonceOfItsOwnEachTime) {
  const SymmetricKey key(SymmetricKeySize::bits128);
  const auto first = AES::GCM::seal({}, key), second = AES::GCM::seal({}, key);
  ASSERT_TRUE(first && second);
  EXPECT_NE(first->nonce, second->nonce);
  EXPECT_EQ(AES::GCM::open(*first, key), NSData());
}

TEST(AESGCM, RefusesKeysOfOtherLengths) {
  for (const std::size_t length : {0U, 15U, 17U, 31U, 33U}) {
    const SymmetricKey key(std::vector<std::uint8_t>(length, 1));
    EXPECT_FALSE(AES::GCM::seal({}, key)) << length;
    EXPECT_FALSE(AES::GCM::open({}, key)) << length;
  }
}

TEST(SymmetricKey, IsRandomAndAsLongAsAsked) {
  EXPECT_EQ(SymmetricKey(SymmetricKeySize::bits128).bitCount(), 128U);
  EXPECT_EQ(SymmetricKey(SymmetricKeySize::bits192).bitCount(), 192U);
  const SymmetricKey key(SymmetricKeySize::bits256);
  EXPECT_EQ(key.bytes().size(), 32U);
  EXPECT_FALSE(key == SymmetricKey(SymmetricKeySize::bits256));
  EXPECT_TRUE(key == SymmetricKey(key.bytes()));
  EXPECT_FALSE(key == SymmetricKey(key.bytes().first(31)));
}

TEST(SymmetricKey, FailsWithoutRandomBytes) {
  const SymmetricKey key(SymmetricKeySize::bits256);
  const Replaced source(SecSetRandomSource, std::make_shared<orlftest::NoRandomBytes>());
  EXPECT_THROW(SymmetricKey{SymmetricKeySize::bits256}, NSException);
  EXPECT_FALSE(AES::GCM::seal({}, key));
}

// RFC 4231, case 2; RFC 5869, cases 1 and 3; RFC 7914, section 12; NIST SP 800-38A, F.5.5.
TEST(KeyedPrimitives, AgreeWithPublishedExamples) {
  using namespace internal::crypto;
  const std::string jefe = "Jefe", first = "what do ya want ", rest = "for nothing?";
  EXPECT_EQ(hexOf(hmacSHA256(spanOf(jefe), {spanOf(first), spanOf(rest)})),
            "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
  std::array<std::uint8_t, 42> key{};
  deriveKey(std::vector<std::uint8_t>(22, 0x0b), bytesOfHex("000102030405060708090a0b0c"),
            bytesOfHex("f0f1f2f3f4f5f6f7f8f9"), key);
  EXPECT_EQ(hexOf(key),
            "3cb25f25faacd57a90434f64d0362f2a2d2d0a90cf1a5a4c5db02d56ecc4c5bf34007208d5b887185865");
  deriveKey(std::vector<std::uint8_t>(22, 0x0b), {}, {}, key);
  EXPECT_EQ(hexOf(key),
            "8da4e775a563c18f715f802a063c5a31b8a11f5c5ee1879ec3454e5f3c738d2d9d201395faa4b61a96c8");
  std::array<std::uint8_t, 64> password{};
  const std::string secret = "password", salt = "NaCl";
  ASSERT_TRUE(
      deriveKeyFromPassword(spanOf(secret), spanOf(salt), {1024, 8, 16}, 1U << 25, password));
  EXPECT_EQ(hexOf(password),
            "fdbabe1c9d3472007856e7190d01e9fe7c6ad7cbc8237830e77376634b3731622eaf30d92e22a3886ff109"
            "279d9830da"
            "c727afb94a83ee6d8360cbdfa2cc0640");
  EXPECT_FALSE(
      deriveKeyFromPassword(spanOf(secret), spanOf(salt), {1024, 8, 16}, 1U << 20, password));
  EXPECT_FALSE(
      deriveKeyFromPassword(spanOf(secret), spanOf(salt), {1000, 8, 1}, 1U << 25, password));
  auto block = bytesOfHex("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51");
  cryptInCounterMode(bytesOfHex("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4"),
                     bytesOfHex("f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff"), block);
  EXPECT_EQ(hexOf(block), "601ec313775789a5b7a7f504bbf3d228f443e3ca4d62b59aca84e990cacaf5c5");
  EXPECT_EQ(hexOf(sha256({})), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

}  // namespace
}  // namespace ORLFoundation
