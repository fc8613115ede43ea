#include <ORLFoundation/security/primitives/ORLFCryptography.h>

#include <ORLFoundation/platform/crypto/CommonCrypto.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/platform/files/NSDataReading.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr NSInteger kKeySizeInBits = 2048;

std::optional<NSData> crypt(CCOperation operation, const NSData& data, const NSData& key,
                            const std::optional<NSData>& vector) {
  // No bytes mean a vector of zeros one floor below; here they are one of a wrong length.
  if (vector && vector->length() != kCCBlockSizeAES128) return std::nullopt;
  const std::size_t room = operation == kCCEncrypt ? kCCBlockSizeAES128 : 0;
  std::vector<std::uint8_t> output(data.length() + room);
  std::size_t length = 0;
  const CCCryptorStatus status =
      CCCrypt({.operation = operation,
               .algorithm = kCCAlgorithmAES,
               .options = kCCOptionPKCS7Padding,
               .key = key.bytes(),
               .initializationVector = vector ? vector->bytes() : std::span<const std::uint8_t>(),
               .input = data.bytes(),
               .output = output},
              length);
  if (status != kCCSuccess) return std::nullopt;
  output.resize(length);
  return NSData::dataWipedAtRelease(std::move(output));
}

}  // namespace

std::shared_ptr<NSMutableData> ORLFCryptography::randomDataOfLength(NSUInteger length) {
  auto data = std::make_shared<NSMutableData>();
  data->setLength(length);
  const int result = SecRandomCopyBytes(kSecRandomDefault, length, data->mutableBytes().data());
  if (result != 0) {
    ORLFLogFailedCondition("result == 0",
                           "Unable to generate random bytes: " + std::to_string(errno));
    data->setLength(0);
    data->setLength(length);
  }
  return data;
}

NSData ORLFCryptography::keyWithLength(NSUInteger length, std::string_view password,
                                       const NSData& salt, std::uint32_t rounds) {
  std::vector<std::uint8_t> key(length);
  const CCCryptorStatus result =
      CCKeyDerivationPBKDF(kCCPBKDF2, password, salt.bytes(), kCCPRFHmacAlgSHA1, rounds, key);
  ORLFConditionAssert(result == kCCSuccess, "result == kCCSuccess",
                      "Unable to create AES key for password: " + std::to_string(result));
  return NSData::dataWipedAtRelease(std::move(key));
}

std::optional<NSData> ORLFCryptography::AES128EncryptData(
    const NSData& data, const NSData& key, const std::optional<NSData>& initializationVector,
    NSErrorSlot /*error*/) {
  return crypt(kCCEncrypt, data, key, initializationVector);
}

std::optional<NSData> ORLFCryptography::AES128DecryptData(
    const NSData& data, const NSData& key, const std::optional<NSData>& initializationVector,
    NSErrorSlot /*error*/) {
  return crypt(kCCDecrypt, data, key, initializationVector);
}

std::shared_ptr<SecKey> ORLFCryptography::makePublicRSAKeyWithFileAtURL(const NSURL& url,
                                                                        NSErrorSlot error) {
  const std::optional<NSData> data = dataWithContentsOfURL(url, 0, error);
  if (!data) return nullptr;
  const auto attributes =
      NSDictionary::dictionaryWithEntries({{kSecAttrKeyType, kSecAttrKeyTypeRSA},
                                           {kSecAttrKeyClass, kSecAttrKeyClassPublic},
                                           {kSecAttrKeySizeInBits, kKeySizeInBits}});
  return SecKeyCreateWithData(*data, attributes, error);
}

}  // namespace ORLFoundation
