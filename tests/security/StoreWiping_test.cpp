// What stays in memory that was given back. All that frees memory in this program, operator delete
// and the hooks of OpenSSL and libxml2, looks through each block for secrets first. The texts of
// entries as objects, which stay in an open store, are let pass: such a block begins with the text.
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/security/primitives/ORLFCryptography.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <gmock/gmock.h>
#include <libxml/parser.h>
#include <malloc.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <tests/support/TemporaryFolder.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "io/secret_input.h"

namespace {

constexpr std::string_view kFilePassword = "the password of the file, long enough for the heap";
constexpr std::string_view kEntryPassword = "the password of an entry, long enough for the heap";
constexpr std::string_view kLaterPassword = "another password of that entry, as long as the first";

constexpr std::size_t kKeyLength = 16;
std::array<char, kKeyLength> fileKey{};

std::atomic<bool> isLooking{false};
std::atomic<int> filePasswords{0}, lists{0}, keys{0};

const char* find(const void* block, std::size_t size, std::string_view secret) {
  return static_cast<const char*>(::memmem(block, size, secret.data(), secret.size()));
}

void look(void* block) {
  if (block == nullptr || !isLooking) return;
  const std::size_t size = ::malloc_usable_size(block);
  if (find(block, size, kFilePassword) != nullptr) ++filePasswords;
  if (find(block, size, {fileKey.data(), fileKey.size()}) != nullptr) ++keys;
  for (const std::string_view secret : {kEntryPassword, kLaterPassword}) {
    const char* const found = find(block, size, secret);
    if (found != nullptr && found != block) ++lists;
  }
}

void release(void* block) {
  look(block);
  std::free(block);
}

/// What moves is released where it was.
void* moved(void* block, std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) return nullptr;
  if (block != nullptr) std::memcpy(memory, block, std::min(size, ::malloc_usable_size(block)));
  release(block);
  return memory;
}

void* taken(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* takeForOpenSSL(std::size_t size, const char*, int) { return std::malloc(size); }
void* moveForOpenSSL(void* block, std::size_t size, const char*, int) { return moved(block, size); }
void releaseForOpenSSL(void* block, const char*, int) { release(block); }

}  // namespace

void* operator new(std::size_t size) { return taken(size); }
void* operator new[](std::size_t size) { return taken(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }

namespace {

using namespace ORLFoundation;
using Store = ORLFEncryptedStore;

/// Gives the same bytes each time, so that the key of a file is known beforehand.
class SameBytes final : public SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    std::fill(bytes.begin(), bytes.end(), 7);
    return true;
  }
};

class StoreWiping : public orlftest::TemporaryFolderTest {
 protected:
  StoreWiping() {
    const NSData salt(std::vector<std::uint8_t>(8, 7));
    const NSData key = ORLFCryptography::keyWithLength(kKeyLength, kFilePassword, salt, 1000);
    std::memcpy(fileKey.data(), key.bytes().data(), kKeyLength);
  }
  ~StoreWiping() override { isLooking = false; }
  /// Does the work and answers how many blocks held a password of the file, a serialized list, a
  /// key.
  template <class Work>
  static std::array<int, 3> foundAfter(const Work& work) {
    filePasswords = lists = keys = 0;
    isLooking = true;
    work();
    isLooking = false;
    return {filePasswords, lists, keys};
  }
  [[nodiscard]] static std::shared_ptr<NSDictionary> content() {
    const auto entry = NSDictionary::dictionaryWithEntries(
        {{"user", "ann"}, {"context", Store::noContext()}, {"password", kEntryPassword}});
    return NSDictionary::dictionaryWithEntries(
        {{"passwords",
          NSDictionary::dictionaryWithEntries({{"bank", NSArray::arrayWithObjects({entry})}})}});
  }

  const NSURL url_ = NSURL::fileURLWithPath(path("store"));

 private:
  const Replaced<std::shared_ptr<SecRandomSource>> source_{SecSetRandomSource,
                                                           std::make_shared<SameBytes>()};
};

constexpr std::array<int, 3> kNothing{0, 0, 0};

TEST_F(StoreWiping, IsSeenByAllHooks) {
  const std::string list = "<string>" + std::string(kEntryPassword) + "</string>";
  EXPECT_EQ(foundAfter([&] { const std::string copy = list; }), (std::array<int, 3>{0, 1, 0}));
  EXPECT_EQ(foundAfter([] { const std::string copy(kFilePassword); }),
            (std::array<int, 3>{1, 0, 0}));
  EXPECT_EQ(foundAfter([] { const std::string copy(kEntryPassword); }), kNothing);
  EXPECT_EQ(foundAfter([] {
              void* const block = OPENSSL_malloc(64);
              std::memcpy(block, fileKey.data(), kKeyLength);
              OPENSSL_free(block);
            }),
            (std::array<int, 3>{0, 0, 1}));
  EXPECT_EQ(foundAfter(
                [] { xmlFree(xmlStrdup(reinterpret_cast<const xmlChar*>(kFilePassword.data()))); }),
            (std::array<int, 3>{1, 0, 0}));
  // A schedule of round keys begins with the key.
  EXPECT_EQ(foundAfter([] {
              std::array<unsigned char, 16> vector{};
              EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
              EVP_EncryptInit_ex(context, EVP_aes_128_cbc(), nullptr,
                                 reinterpret_cast<const unsigned char*>(fileKey.data()),
                                 vector.data());
              EVP_CIPHER_CTX_free(context);
            }),
            kNothing);
}

TEST_F(StoreWiping, LeavesNothingOfWrittenReadAndCheckedFiles) {
  const auto list = content();
  EXPECT_EQ(foundAfter(
                [&] { EXPECT_TRUE(Store::writeEncryptedPropertyList(list, url_, kFilePassword)); }),
            kNothing);
  EXPECT_EQ(foundAfter([&] {
              const id found = Store::readEncryptedPropertyListForFileAtURL(url_, kFilePassword);
              EXPECT_EQ(found, id(list));
            }),
            kNothing);
  EXPECT_EQ(foundAfter([&] {
              EXPECT_EQ(Store::checkPassword(kFilePassword, url_), ORLFEncryptedStoreOpens);
              EXPECT_EQ(Store::checkPassword("wrong", url_),
                        ORLFEncryptedStoreWrongPasswordOrDamaged);
            }),
            kNothing);
}

TEST_F(StoreWiping, LeavesNothingOfDamagedFilesAndFailedWriting) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(content(), url_, kFilePassword));
  const auto outer = NSPropertyListSerialization::propertyListWithData(
                         NSData(read("store")), NSPropertyListMutableContainers)
                         .as<NSMutableDictionary>();
  const auto bytes = outer->objectForKey("data").as<NSData>()->bytes();
  std::vector<std::uint8_t> damaged(bytes.begin(), bytes.end());
  damaged.back() ^= 1;
  outer->setObject(NSData(std::move(damaged)), "data");
  write("store",
        NSPropertyListSerialization::dataWithPropertyList(outer, NSPropertyListXMLFormat_v1_0, 0)
            ->text());
  const auto list = content();
  EXPECT_EQ(foundAfter([&] {
              EXPECT_EQ(Store::checkPassword(kFilePassword, url_), ORLFEncryptedStoreDamaged);
              EXPECT_EQ(Store::readEncryptedPropertyListForFileAtURL(url_, kFilePassword),
                        id(outer));
              EXPECT_FALSE(Store::writeEncryptedPropertyList(
                  list, NSURL::fileURLWithPath(path("no/such")), kFilePassword));
            }),
            kNothing);
}

TEST_F(StoreWiping, LeavesNothingOfAStoreThatIsClosedAndGone) {
  EXPECT_EQ(foundAfter([&] {
              auto store = Store::openStoreWithFileAtURL(url_, kFilePassword);
              store->setStoreInKeychain(false);
              EXPECT_TRUE(store->setPassword(std::string(kEntryPassword), "ann", "bank",
                                             Store::noContext()));
              EXPECT_EQ(store->passwordForUser("ann", "bank", Store::noContext()), kEntryPassword);
              EXPECT_TRUE(store->mergePassword(std::string(kLaterPassword), "ann", "bank",
                                               Store::noContext()));
              EXPECT_TRUE(store->mergePassword(std::nullopt, "ann", "bank", Store::noContext()));
              store->close(true);
              const std::weak_ptr<Store> gone = store;
              store = nullptr;
              dispatch_sync(Store::sharedEventQueue(), [] {});
              EXPECT_TRUE(gone.expired());
            }),
            kNothing);
}

TEST_F(StoreWiping, LeavesNothingOfPasswordsThatTheToolReads) {
  const std::optional<std::string> file = write("password", std::string(kFilePassword) + "\r\n");
  EXPECT_EQ(foundAfter([&] {
              const orlftool::Secret secret = orlftool::readSecret(
                  {.option = "--password-file", .file = file, .prompt = "", .isNew = false});
              EXPECT_EQ(secret.text(), kFilePassword);
            }),
            kNothing);
}

}  // namespace

int main(int count, char** words) {
  if (CRYPTO_set_mem_functions(&takeForOpenSSL, &moveForOpenSSL, &releaseForOpenSSL) != 1) return 1;
  if (xmlMemSetup(&release, &std::malloc, &moved, &::strdup) != 0) return 1;
  testing::InitGoogleMock(&count, words);
  return RUN_ALL_TESTS();
}
