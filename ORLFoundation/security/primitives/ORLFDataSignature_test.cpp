#include <ORLFoundation/security/primitives/ORLFDataSignature.h>

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/crypto/SecKey_testing.h>
#include <ORLFoundation/security/primitives/ORLFCryptography.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using orlftest::openssl;

/// Files beside each other as `openssl` makes them, with a key of some size.
class DataSignature : public orlftest::TemporaryFolderTest {
 protected:
  std::shared_ptr<SecKey> makeKey(int bits) const {
    openssl(folder_, "genrsa -out key.pem " + std::to_string(bits));
    openssl(folder_, "rsa -in key.pem -RSAPublicKey_out -outform DER -out key.der");
    return ORLFCryptography::makePublicRSAKeyWithFileAtURL(NSURL::fileURLWithPath(path("key.der")));
  }
  std::string signature(std::string_view text, const std::string& digest) const {
    write("text", text);
    openssl(folder_, "dgst -" + digest + " -sign key.pem -out signature text");
    return internal::base::base64Text(read("signature"));
  }
  NSData signedData(std::string_view text, const std::string& digest) const {
    return NSData(std::string_view(std::string(text) + "\nSignature: " + signature(text, digest)));
  }

  static NSInteger failure(const NSData& data, const SecKey* key, ORLFSignatureEncoding encoding,
                           bool optional = false) {
    std::shared_ptr<const NSError> error;
    if (orlfVerifySignatureWithKey(data, key, encoding, optional, &error)) {
      EXPECT_EQ(error, nullptr);
      return 0;
    }
    EXPECT_EQ(orlfVerifySignatureWithKey(data, key, encoding, optional), false);
    EXPECT_EQ(error ? error->domain() : "", ORLFSecurityErrorDomain);
    return error ? error->code() : -1;
  }
};

constexpr auto kSHA256 = ORLFSignatureEncodingRSASHA256;
constexpr auto kSHA1 = ORLFSignatureEncodingRSASHA1;

TEST_F(DataSignature, PassesWhatOpenSSLSignedUnderItsEncodingAlone) {
  const auto key = makeKey(2048);
  ASSERT_NE(key, nullptr);
  const NSData long256 = signedData("a text\nof lines", "sha256");
  const NSData short1 = signedData("a text\nof lines", "sha1");
  EXPECT_EQ(failure(long256, key.get(), kSHA256), 0);
  EXPECT_EQ(failure(long256, key.get(), kSHA1), ORLFSignatureErrorInvalid);
  EXPECT_EQ(failure(short1, key.get(), kSHA1), 0);
  EXPECT_EQ(failure(short1, key.get(), kSHA256), ORLFSignatureErrorInvalid);
  EXPECT_EQ(failure(long256, key.get(), static_cast<ORLFSignatureEncoding>(2)),
            ORLFSignatureErrorEncoding);
  EXPECT_EQ(failure(long256, nullptr, kSHA256), ORLFSignatureErrorKey);
}

TEST_F(DataSignature, PassesAMissingSignatureOnlyWhereItIsOptional) {
  const auto key = makeKey(2048);
  for (const char* text : {"", "a text", "Signature:", "not a Signature: AAAA"}) {
    const NSData data{std::string_view(text)};
    EXPECT_EQ(failure(data, key.get(), kSHA256, false), ORLFSignatureErrorMissing) << text;
    EXPECT_EQ(failure(data, key.get(), kSHA256, true), 0) << text;
    EXPECT_EQ(failure(data, nullptr, kSHA256, true), 0) << text;
  }
  for (const char* text :
       {"Signature: ", "a\nSignature: AAAA", "a\nSignature: !", "a\nSignature: QQ==QQ=="})
    EXPECT_EQ(failure(NSData(std::string_view(text)), key.get(), kSHA256, true),
              ORLFSignatureErrorInvalid)
        << text;
}

TEST_F(DataSignature, FindsTheLastLineThatBeginsWithTheMarker) {
  const auto key = makeKey(2048);
  EXPECT_EQ(failure(signedData("a\nSignature: AAAA\nb Signature: c", "sha256"), key.get(), kSHA256),
            0);
  EXPECT_EQ(failure(signedData("", "sha256"), key.get(), kSHA256), 0);
  // Carriage returns in front of the line, and line breaks in the signature, belong to neither.
  const std::string text = signature("a", "sha256");
  const std::string broken =
      "a\r\nSignature: " + text.substr(0, 64) + "\r\n" + text.substr(64) + "\n";
  EXPECT_EQ(failure(NSData(std::string_view(broken)), key.get(), kSHA256), 0);
}

TEST_F(DataSignature, RefusesEveryChangedByte) {
  const auto key = makeKey(2048);
  const NSData data = signedData("pay 10 to ann", "sha256");
  for (std::size_t at = 0; at < data.length(); ++at) {
    std::vector<std::uint8_t> bytes(data.bytes().begin(), data.bytes().end());
    bytes[at] ^= 1;
    EXPECT_NE(failure(NSData(bytes), key.get(), kSHA256), 0) << at;
  }
}

TEST_F(DataSignature, RefusesShortKeysAndOtherKeys) {
  const auto weak = makeKey(1024);
  ASSERT_NE(weak, nullptr);
  EXPECT_EQ(weak->sizeInBits(), 1024);
  EXPECT_EQ(failure(signedData("a", "sha256"), weak.get(), kSHA256), ORLFSignatureErrorKey);
  const auto key = makeKey(2048);
  const NSData data = signedData("a", "sha256");
  EXPECT_EQ(failure(data, makeKey(2048).get(), kSHA256), ORLFSignatureErrorInvalid);
  EXPECT_EQ(failure(data, key.get(), kSHA256), 0);
}

TEST_F(DataSignature, RefusesOtherPadding) {
  const auto key = makeKey(2048);
  write("text", "a");
  openssl(folder_, "dgst -sha256 -sigopt rsa_padding_mode:pss -sign key.pem -out signature text");
  const std::string data = "a\nSignature: " + internal::base::base64Text(read("signature"));
  EXPECT_EQ(failure(NSData(std::string_view(data)), key.get(), kSHA256), ORLFSignatureErrorInvalid);
}

}  // namespace
}  // namespace ORLFoundation
