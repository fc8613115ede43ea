#include <ORLFoundation/security/primitives/ORLFCryptography.h>

#include <ORLFoundation/platform/base/Hexadecimal_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/security/primitives/ORLFDataHashing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using internal::base::hexText;
using orlftest::bytesOfHex;
using testing::ElementsAre;

class BrokenSource final : public SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    std::fill(bytes.begin(), bytes.end(), 7);
    errno = EAGAIN;
    return false;
  }
};

TEST(ORLFCryptography, GivesRandomBytes) {
  EXPECT_EQ(ORLFCryptography::randomDataOfLength(0)->length(), 0U);
  const auto first = ORLFCryptography::randomDataOfLength(32);
  const auto second = ORLFCryptography::randomDataOfLength(32);
  EXPECT_EQ(first->length(), 32U);
  EXPECT_NE(first->text(), second->text());
}

TEST(ORLFCryptography, LogsWhereTheSystemGivesNoRandomBytesAndGivesZeros) {
  const LogCapture log;
  const Replaced source(SecSetRandomSource, std::make_shared<BrokenSource>());
  EXPECT_EQ(ORLFCryptography::randomDataOfLength(5)->text(), std::string_view("\0\0\0\0\0", 5));
  EXPECT_THAT(log.lines(), ElementsAre("Condition Failed: result == 0 Unable to generate random "
                                       "bytes: " +
                                       std::to_string(EAGAIN)));
}

TEST(ORLFCryptography, LogsRoundsOrLengthsOfZeroAndGivesZeros) {
  const LogCapture log;
  const std::string line =
      "Condition Failed: result == kCCSuccess Unable to create AES key for password: -4300";
  EXPECT_EQ(ORLFCryptography::keyWithLength(3, "p", NSData(), 0).text(),
            std::string_view("\0\0\0", 3));
  EXPECT_EQ(ORLFCryptography::keyWithLength(0, "p", NSData(), 1).length(), 0U);
  EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST(ORLFCryptography, EncryptsWithTheKeysOfThePublishedRows) {
  // NIST SP 800-38A, F.2: what comes after these four blocks is the padding.
  const NSData plain = NSData(bytesOfHex(
      "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e5130c81c46a35ce411e5fbc1191a0a"
      "52ef"
      "f69f2445df4f9b17ad2b417be66c3710"));
  const NSData vector = NSData(bytesOfHex("000102030405060708090a0b0c0d0e0f"));
  const std::pair<const char*, const char*> rows[] = {
      {"2b7e151628aed2a6abf7158809cf4f3c",
       "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b273bed6b8e3c1743b7116e69e222"
       "29516"
       "3ff1caa1681fac09120eca307586e1a7"},
      {"8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b",
       "4f021db243bc633d7178183a9fa071e8b4d9ada9ad7dedf4e5e738763f69145a571b242012fb7ae07fa9baac3df"
       "102e0"
       "08b0e27988598881d920a9e64f5615cd"},
      {"603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
       "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d39f23369a9d9bacfa530e263042"
       "31461"
       "b2eb05e2c39be9fcda6c19078c6a9d1b"}};
  for (const auto& [key, cipher] : rows) {
    const auto sealed = ORLFCryptography::AES128EncryptData(plain, NSData(bytesOfHex(key)), vector);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->length(), 80U);
    EXPECT_EQ(hexText(sealed->text().substr(0, 64)), cipher);
    EXPECT_EQ(ORLFCryptography::AES128DecryptData(*sealed, NSData(bytesOfHex(key)), vector), plain);
  }
}

TEST(ORLFCryptography, TakesNoVectorForZeros) {
  const NSData key(std::vector<std::uint8_t>(16, 3));
  const NSData zeros(std::vector<std::uint8_t>(16, 0));
  const NSData plain(std::string_view("text"));
  EXPECT_EQ(ORLFCryptography::AES128EncryptData(plain, key, std::nullopt),
            ORLFCryptography::AES128EncryptData(plain, key, zeros));
}

TEST(ORLFCryptography, RefusesKeysAndVectorsOfOtherLengthsAndFillsNoError) {
  const NSData plain(std::string_view("text"));
  const NSData block(std::vector<std::uint8_t>(16, 1));
  std::shared_ptr<const NSError> error;
  for (std::size_t length = 0; length < 40; ++length) {
    const NSData other(std::vector<std::uint8_t>(length, 1));
    const bool isKey = length == 16 || length == 24 || length == 32;
    EXPECT_EQ(ORLFCryptography::AES128EncryptData(plain, other, block, &error).has_value(), isKey);
    EXPECT_EQ(ORLFCryptography::AES128EncryptData(plain, block, other, &error).has_value(),
              length == 16);
    EXPECT_EQ(ORLFCryptography::AES128DecryptData(
                  *ORLFCryptography::AES128EncryptData(plain, block, block), block, other)
                  .has_value(),
              length == 16);
  }
  EXPECT_EQ(ORLFCryptography::AES128DecryptData(plain, block, block, &error), std::nullopt);
  EXPECT_EQ(error, nullptr);
}

TEST(ORLFCryptography, RefusesDamagedPaddingAndCutData) {
  const NSData key(std::vector<std::uint8_t>(16, 9));
  std::mt19937 random(3);
  for (std::size_t size = 0; size < 70; ++size) {
    std::vector<std::uint8_t> bytes(size);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    const NSData plain(bytes);
    const auto sealed = ORLFCryptography::AES128EncryptData(plain, key, std::nullopt);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->length(), size / 16 * 16 + 16);
    EXPECT_EQ(ORLFCryptography::AES128DecryptData(*sealed, key, std::nullopt), plain);
    const NSData cut(sealed->bytes().first(sealed->length() - 1));
    EXPECT_EQ(ORLFCryptography::AES128DecryptData(cut, key, std::nullopt), std::nullopt);
  }
  // The last byte of the plain text counts the padding: zero and seventeen are none.
  for (const int last : {0, 17, 255}) {
    std::vector<std::uint8_t> block(16, 1);
    block.back() = static_cast<std::uint8_t>(last);
    const auto two = ORLFCryptography::AES128EncryptData(NSData(block), key, std::nullopt);
    const NSData first(two->bytes().first(16));
    EXPECT_EQ(ORLFCryptography::AES128DecryptData(first, key, std::nullopt), std::nullopt);
  }
}

TEST(DataHashing, GivesThePublishedDigests) {
  EXPECT_EQ(hexText(orlfSHAHash("abc").text()), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(hexText(orlfSHAHash("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq").text()),
            "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
  EXPECT_EQ(hexText(orlfSHAHash(NSData(std::vector<std::uint8_t>(1'000'000, 'a'))).text()),
            "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(DataHashing, EndsATextAtItsFirstZeroByteAndDataNowhere) {
  const std::string_view text("abc\0def", 7);
  EXPECT_EQ(orlfSHAHash(text), orlfSHAHash("abc"));
  EXPECT_NE(orlfSHAHash(NSData(text)), orlfSHAHash("abc"));
  EXPECT_EQ(orlfSHAHash(text).length(), 20U);
}

class PublicKeyFile : public orlftest::TemporaryFolderTest {};

TEST_F(PublicKeyFile, GivesTheErrorOfReadingOrOfTheKey) {
  std::shared_ptr<const NSError> error;
  EXPECT_EQ(
      ORLFCryptography::makePublicRSAKeyWithFileAtURL(NSURL::fileURLWithPath(path("none")), &error),
      nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 260);
  error = nullptr;
  EXPECT_EQ(ORLFCryptography::makePublicRSAKeyWithFileAtURL(
                NSURL::fileURLWithPath(write("key", "no key")), &error),
            nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->domain(), NSOSStatusErrorDomain);
  EXPECT_EQ(error->code(), errSecParam);
  EXPECT_EQ(ORLFCryptography::makePublicRSAKeyWithFileAtURL(NSURL::fileURLWithPath("/")), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
