#include <ORLFoundation/security/store/internal/StoreFile.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/crypto/CommonCrypto.h>
#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/NSDataReading.h>
#include <ORLFoundation/platform/files/NSURLResourceValues.h>
#include <ORLFoundation/platform/files/WholeFile.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/security/primitives/ORLFCryptography.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation::internal::store {
namespace {

using Serialization = NSPropertyListSerialization;

constexpr NSUInteger kVectorLength = kCCBlockSizeAES128, kSaltLength = 8, kKeyLength = 16;
constexpr std::uint32_t kRounds = 1000;
constexpr const char* kVectorKey = "iv";
constexpr const char* kSaltKey = "salt";
constexpr const char* kDataKey = "data";

/// What lies in a list under the three keys.
struct SealedList {
  std::optional<NSData> vector, salt, data;

  explicit SealedList(const id& list) {
    const auto dictionary = list.as<NSDictionary>();
    if (!dictionary) return;
    vector = dictionary->objectForKey(kVectorKey).as<NSData>();
    salt = dictionary->objectForKey(kSaltKey).as<NSData>();
    data = dictionary->objectForKey(kDataKey).as<NSData>();
  }
  [[nodiscard]] bool isWhole() const { return vector && salt && data; }
  [[nodiscard]] bool isNone() const { return !vector && !salt && !data; }
};

NSData keyOf(std::string_view password, const NSData& salt) {
  return ORLFCryptography::keyWithLength(kKeyLength, password, salt, kRounds);
}

/// The bytes of a new file; nil where the list, or the cipher, does not give them.
std::optional<NSData> sealedBytes(const id& list, std::string_view password, NSErrorSlot error) {
  if (list.isNil()) return std::nullopt;
  const auto plain =
      Serialization::dataWithPropertyList(list, NSPropertyListXMLFormat_v1_0, 0, error);
  if (!plain) return std::nullopt;
  const NSData vector = ORLFCryptography::randomDataOfLength(kVectorLength)->data();
  const NSData salt = ORLFCryptography::randomDataOfLength(kSaltLength)->data();
  const auto sealed = ORLFCryptography::AES128EncryptData(*plain, keyOf(password, salt), vector);
  if (!sealed) return std::nullopt;
  const auto outer = NSDictionary::dictionaryWithEntries(
      {{kVectorKey, vector}, {kSaltKey, salt}, {kDataKey, *sealed}});
  return Serialization::dataWithPropertyList(outer, NSPropertyListXMLFormat_v1_0, 0, error);
}

using WriteWholeFile = bool (*)(const std::string&, std::string_view, files::NewFileRights,
                                NSErrorSlot);

/// Writes to what a link at the address leads to, also where nothing stands there.
bool writeWhole(WriteWholeFile write, const NSData& bytes, const NSURL& url, NSErrorSlot error) {
  const auto path = files::pathOfFileURL(url, files::FileWork::Write, error);
  if (!path) return false;
  std::shared_ptr<const NSError> cause;
  if (write(stringByResolvingSymlinksInPath(*path), bytes.text(), files::NewFileRights::Private,
            &cause))
    return true;
  return files::fillErrorSlot(error,
                              {files::FileWork::Write, static_cast<int>(cause->code()), *path});
}

/// Decrypts the whole blocks and keeps their padding.
NSData decryptedBlocks(const SealedList& sealed, const NSData& key) {
  const auto input = sealed.data->bytes();
  const auto blocks = input.first(input.size() - input.size() % kCCBlockSizeAES128);
  const bool hasVector = sealed.vector && sealed.vector->length() == kVectorLength;
  std::vector<std::uint8_t> output(blocks.size());
  std::size_t length = 0;
  const CCCryptorStatus status = CCCrypt(
      {.operation = kCCDecrypt,
       .algorithm = kCCAlgorithmAES,
       .options = 0,
       .key = key.bytes(),
       .initializationVector = hasVector ? sealed.vector->bytes() : std::span<const std::uint8_t>(),
       .input = blocks,
       .output = output},
      length);
  if (status != kCCSuccess) return {};
  return NSData::dataWipedAtRelease(std::move(output));
}

/// The length of a text without its padding; nil where that is none.
std::optional<std::size_t> lengthWithoutPadding(std::span<const std::uint8_t> blocks) {
  if (blocks.empty()) return std::nullopt;
  const std::uint8_t count = blocks.back();
  if (count == 0 || count > kCCBlockSizeAES128) return std::nullopt;
  const auto padding = blocks.last(count);
  if (!std::all_of(padding.begin(), padding.end(), [count](auto byte) { return byte == count; }))
    return std::nullopt;
  return blocks.size() - count;
}

/// Whether three quarters of the bytes are characters of a text. Of bytes that a wrong key gives,
/// some two fifths are, and so short a run that chance could do more is none.
bool isMostlyText(std::string_view bytes) {
  constexpr std::size_t kLeastBytes = 64;
  if (bytes.size() < kLeastBytes) return false;
  std::size_t count = 0;
  for (std::string_view rest = bytes; !rest.empty();) {
    const base::UTF8Character character = base::firstUTF8Character(rest);
    const bool isBlank = character.codePoint == U'\t' || character.codePoint == U'\n' ||
                         character.codePoint == U'\r';
    const bool isControl = character.codePoint < U' ' || character.codePoint == U'\x7F';
    if (!character.isBroken && (isBlank || !isControl)) count += character.length;
    rest.remove_prefix(character.length);
  }
  return count >= bytes.size() / 4 * 3;
}

/// The content of blocks whose padding is whole and whose text is a dictionary.
id contentOf(const NSData& blocks) {
  const auto length = lengthWithoutPadding(blocks.bytes());
  if (!length) return {};
  const auto text = blocks.bytes().first(*length);
  const id content =
      Serialization::propertyListWithData(NSData::dataWipedAtRelease({text.begin(), text.end()}),
                                          NSPropertyListMutableContainersAndLeaves);
  return content.as<NSMutableDictionary>() ? content : id();
}

}  // namespace

id readStoreFile(const NSURL& url, std::string_view password, NSErrorSlot error) {
  const auto bytes = dataWithContentsOfURL(url, 0, error);
  if (!bytes) return {};
  id outer = Serialization::propertyListWithData(*bytes, NSPropertyListImmutable, nullptr, error);
  const SealedList sealed(outer);
  if (!sealed.isWhole()) return outer;
  const auto plain = ORLFCryptography::AES128DecryptData(
      *sealed.data, keyOf(password, *sealed.salt), sealed.vector);
  if (!plain) return outer;
  return Serialization::propertyListWithData(*plain, NSPropertyListMutableContainersAndLeaves,
                                             nullptr, error);
}

bool writeStoreFile(const id& list, const NSURL& url, std::string_view password,
                    NSErrorSlot error) {
  const auto bytes = sealedBytes(list, password, error);
  return bytes && writeWhole(&files::replaceFile, *bytes, url, error);
}

bool createStoreFile(const NSURL& url, std::string_view password) {
  const auto bytes = sealedBytes(std::make_shared<NSDictionary>(), password, nullptr);
  return bytes && writeWhole(&files::createFile, *bytes, url, nullptr);
}

CheckedStoreFile checkStoreFile(const NSURL& url, std::string_view password, NSErrorSlot error) {
  const auto bytes = dataWithContentsOfURL(url, 0, error);
  if (!bytes) return {};
  const id outer =
      Serialization::propertyListWithData(*bytes, NSPropertyListImmutable, nullptr, error);
  if (outer.isNil()) return {};
  const SealedList sealed(outer);
  if (sealed.isNone()) return {ORLFEncryptedStoreNotEncrypted};
  if (!sealed.salt || !sealed.data) return {ORLFEncryptedStoreWrongPasswordOrDamaged};
  const NSData blocks = decryptedBlocks(sealed, keyOf(password, *sealed.salt));
  const bool isWhole = sealed.vector && sealed.vector->length() == kVectorLength &&
                       blocks.length() == sealed.data->length();
  id content = isWhole ? contentOf(blocks) : id();
  if (content) return {ORLFEncryptedStoreOpens, std::move(content)};
  return {isMostlyText(blocks.text()) ? ORLFEncryptedStoreDamaged
                                      : ORLFEncryptedStoreWrongPasswordOrDamaged};
}

}  // namespace ORLFoundation::internal::store
