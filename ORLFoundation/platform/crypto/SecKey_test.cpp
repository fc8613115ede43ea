
#include <ORLFoundation/platform/crypto/SecKey.h>

#include <ORLFoundation/platform/crypto/SecKey_testing.h>
#include <gtest/gtest.h>
#include <tests/support/Bytes.h>
#include <tests/support/TemporaryFolder.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using orlftest::openssl;
using orlftest::spanOf;

std::shared_ptr<NSDictionary> attributesOf(std::string_view type, std::string_view keyClass) {
  return NSDictionary::dictionaryWithEntries({{kSecAttrKeyType, type},
                                              {kSecAttrKeyClass, keyClass},
                                              {kSecAttrKeySizeInBits, NSInteger{2048}}});
}

std::shared_ptr<NSDictionary> publicRSA() {
  return attributesOf(kSecAttrKeyTypeRSA, kSecAttrKeyClassPublic);
}

class SecKeyFiles : public orlftest::TemporaryFolderTest {
 protected:
  void SetUp() override { openssl(folder_, "genrsa -out key.pem 2048"); }

  std::string made(const std::string& words) const {
    openssl(folder_, words + " -out made");
    return read("made");
  }
  static NSInteger failure(std::string_view bytes,
                           const std::shared_ptr<NSDictionary>& attributes) {
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(SecKeyCreateWithData(NSData(bytes), attributes, &error), nullptr);
    EXPECT_EQ(error ? error->domain() : "", NSOSStatusErrorDomain);
    return error ? error->code() : 0;
  }
};

TEST_F(SecKeyFiles, ReadsBothFormsOfPublicKeys) {
  const std::string plain = made("rsa -in key.pem -RSAPublicKey_out -outform DER");
  const std::string wrapped = made("rsa -in key.pem -pubout -outform DER");
  openssl(folder_, "dgst -sha256 -sign key.pem -out signature key.pem");
  for (const std::string& bytes : {plain, wrapped}) {
    const auto key = SecKeyCreateWithData(NSData(std::string_view(bytes)), publicRSA());
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->sizeInBits(), 2048);
    const std::string message = read("key.pem"), signature = read("signature");
    EXPECT_TRUE(key->verifies(spanOf(message), spanOf(signature),
                              kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA256));
    EXPECT_FALSE(key->verifies(spanOf(message), spanOf(signature),
                               kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA1));
    EXPECT_FALSE(
        key->verifies(spanOf(message), spanOf(signature), static_cast<SecKeyAlgorithm>(9)));
    EXPECT_FALSE(
        key->verifies(spanOf(message), {}, kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA256));
  }
}

TEST_F(SecKeyFiles, RefusesWhatIsNoPublicRSAKey) {
  const std::string plain = made("rsa -in key.pem -RSAPublicKey_out -outform DER");
  EXPECT_EQ(failure("", publicRSA()), errSecParam);
  EXPECT_EQ(failure("text", publicRSA()), errSecParam);
  EXPECT_EQ(failure(plain + "x", publicRSA()), errSecParam);
  EXPECT_EQ(failure(plain.substr(0, plain.size() - 1), publicRSA()), errSecParam);
  EXPECT_EQ(failure(read("key.pem"), publicRSA()), errSecParam);
  openssl(folder_, "ecparam -name prime256v1 -genkey -out ec.pem");
  EXPECT_EQ(failure(made("ec -in ec.pem -pubout -outform DER"), publicRSA()), errSecParam);
  EXPECT_EQ(SecKeyCreateWithData(NSData(std::string_view("text")), publicRSA()), nullptr);
}

TEST_F(SecKeyFiles, RefusesOtherAttributes) {
  const std::string plain = made("rsa -in key.pem -RSAPublicKey_out -outform DER");
  EXPECT_EQ(failure(plain, nullptr), errSecUnsupportedKeyType);
  EXPECT_EQ(failure(plain, attributesOf("73", kSecAttrKeyClassPublic)), errSecUnsupportedKeyType);
  EXPECT_EQ(failure(plain, attributesOf(kSecAttrKeyTypeRSA, "1")), errSecUnsupportedKeyType);
}

TEST_F(SecKeyFiles, CopiesToAnEqualKey) {
  const std::string plain = made("rsa -in key.pem -RSAPublicKey_out -outform DER");
  const auto key = SecKeyCreateWithData(NSData(std::string_view(plain)), publicRSA());
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(key->copy(), key);
}

}  // namespace
}  // namespace ORLFoundation
