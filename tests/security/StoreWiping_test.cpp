// What stays of a store in memory that was given back. The texts of entries as objects, which stay
// in an open store, are let pass: such a block begins with the text.
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/crypto/SecRandom_testing.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/security/primitives/ORLFCryptography.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <gmock/gmock.h>
#include <libxml/parser.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <tests/security/ReleasedBlocks.h>
#include <tests/support/TemporaryFolder.h>

#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "io/secret_input.h"

namespace {

using namespace ORLFoundation;
using Store = ORLFEncryptedStore;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kFilePassword = "the password of the file, long enough for the heap";
constexpr std::string_view kEntryPassword = "the password of an entry, long enough for the heap";
constexpr std::string_view kLaterPassword = "another password of that entry, as long as the first";

constexpr std::size_t kKeyLength = 16;

class StoreWiping : public orlftest::TemporaryFolderTest {
 protected:
  template <class Work>
  [[nodiscard]] std::vector<std::string> foundAfter(const Work& work) const {
    return blocks_.foundAfter(work);
  }
  [[nodiscard]] static std::shared_ptr<NSDictionary> content() {
    const auto entry = NSDictionary::dictionaryWithEntries(
        {{"user", "ann"}, {"context", Store::noContext()}, {"password", kEntryPassword}});
    return NSDictionary::dictionaryWithEntries(
        {{"passwords",
          NSDictionary::dictionaryWithEntries({{"bank", NSArray::arrayWithObjects({entry})}})}});
  }

  const NSURL url_ = NSURL::fileURLWithPath(path("store"));
  const NSData key_ = ORLFCryptography::keyWithLength(
      kKeyLength, kFilePassword, NSData(std::vector<std::uint8_t>(8, 7)), 1000);

 private:
  const orlftest::ReleasedBlocks blocks_{{{"file password", std::string(kFilePassword)},
                                          {"list", std::string(kEntryPassword), true},
                                          {"list", std::string(kLaterPassword), true},
                                          {"key", std::string(key_.text())}}};
  /// The same bytes each time, so that the key of a file is known beforehand.
  const Replaced<std::shared_ptr<SecRandomSource>> source_{
      SecSetRandomSource, std::make_shared<orlftest::SameRandomBytes>(std::uint8_t{7})};
};

TEST_F(StoreWiping, IsSeenByAllHooks) {
  const std::string list = "<string>" + std::string(kEntryPassword) + "</string>";
  EXPECT_THAT(foundAfter([&] { const std::string copy = list; }), ElementsAre("list"));
  EXPECT_THAT(foundAfter([] { const std::string copy(kFilePassword); }),
              ElementsAre("file password"));
  EXPECT_THAT(foundAfter([] { const std::string copy(kEntryPassword); }), IsEmpty());
  EXPECT_THAT(foundAfter([&] {
                void* const block = OPENSSL_malloc(64);
                std::memcpy(block, key_.bytes().data(), kKeyLength);
                OPENSSL_free(block);
              }),
              ElementsAre("key"));
  EXPECT_THAT(foundAfter([] {
                xmlFree(xmlStrdup(reinterpret_cast<const xmlChar*>(kFilePassword.data())));
              }),
              ElementsAre("file password"));
  // A schedule of round keys begins with the key.
  EXPECT_THAT(foundAfter([&] {
                std::array<unsigned char, 16> vector{};
                EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
                EVP_EncryptInit_ex(context, EVP_aes_128_cbc(), nullptr, key_.bytes().data(),
                                   vector.data());
                EVP_CIPHER_CTX_free(context);
              }),
              IsEmpty());
}

TEST_F(StoreWiping, LeavesNothingOfWrittenReadAndCheckedFiles) {
  const auto list = content();
  EXPECT_THAT(foundAfter([&] {
                EXPECT_TRUE(Store::writeEncryptedPropertyList(list, url_, kFilePassword));
              }),
              IsEmpty());
  EXPECT_THAT(foundAfter([&] {
                const id found = Store::readEncryptedPropertyListForFileAtURL(url_, kFilePassword);
                EXPECT_EQ(found, id(list));
              }),
              IsEmpty());
  EXPECT_THAT(foundAfter([&] {
                EXPECT_EQ(Store::checkPassword(kFilePassword, url_), ORLFEncryptedStoreOpens);
                EXPECT_EQ(Store::checkPassword("wrong", url_),
                          ORLFEncryptedStoreWrongPasswordOrDamaged);
              }),
              IsEmpty());
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
  EXPECT_THAT(foundAfter([&] {
                EXPECT_EQ(Store::checkPassword(kFilePassword, url_), ORLFEncryptedStoreDamaged);
                EXPECT_EQ(Store::readEncryptedPropertyListForFileAtURL(url_, kFilePassword),
                          id(outer));
                EXPECT_FALSE(Store::writeEncryptedPropertyList(
                    list, NSURL::fileURLWithPath(path("no/such")), kFilePassword));
              }),
              IsEmpty());
}

TEST_F(StoreWiping, LeavesNothingOfAStoreThatIsClosedAndGone) {
  EXPECT_THAT(
      foundAfter([&] {
        auto store = Store::openStoreWithFileAtURL(url_, kFilePassword);
        store->setStoreInKeychain(false);
        EXPECT_TRUE(
            store->setPassword(std::string(kEntryPassword), "ann", "bank", Store::noContext()));
        EXPECT_EQ(store->passwordForUser("ann", "bank", Store::noContext()), kEntryPassword);
        EXPECT_TRUE(
            store->mergePassword(std::string(kLaterPassword), "ann", "bank", Store::noContext()));
        EXPECT_TRUE(store->mergePassword(std::nullopt, "ann", "bank", Store::noContext()));
        store->close(true);
        const std::weak_ptr<Store> gone = store;
        store = nullptr;
        dispatch_sync(Store::sharedEventQueue(), [] {});
        EXPECT_TRUE(gone.expired());
      }),
      IsEmpty());
}

TEST_F(StoreWiping, LeavesNothingOfPasswordsThatTheToolReads) {
  const std::optional<std::string> file = write("password", std::string(kFilePassword) + "\r\n");
  EXPECT_THAT(foundAfter([&] {
                const orlftool::Secret secret = orlftool::readSecret(
                    {.option = "--password-file", .file = file, .prompt = "", .isNew = false});
                EXPECT_EQ(secret.text(), kFilePassword);
              }),
              IsEmpty());
}

}  // namespace
