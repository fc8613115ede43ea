#include <ORLFoundation/security/store/internal/StoreFile.h>

#include <ORLFoundation/platform/crypto/SecRandom_testing.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore_testing.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

namespace ORLFoundation {
namespace {

using orlftest::contentWith;
using orlftest::entryOf;
using testing::IsEmpty;
using Store = ORLFEncryptedStore;
using Error = std::shared_ptr<const NSError>;

/// Gives 1, 2, 3 and so on.
class CountingSource final : public SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    std::iota(bytes.begin(), bytes.end(), next_);
    next_ = static_cast<std::uint8_t>(next_ + bytes.size());
    return true;
  }

 private:
  std::uint8_t next_ = 1;
};

class EncryptedStoreFile : public orlftest::EncryptedStoreTest {
 protected:
  /// The file's own list.
  [[nodiscard]] std::shared_ptr<NSDictionary> outerList(const std::string& name = "store") const {
    return NSPropertyListSerialization::propertyListWithData(NSData(read(name)), 0)
        .as<NSDictionary>();
  }
};

TEST_F(EncryptedStoreFile, WritesVectorSaltAndWholeBlocksAsAnXMLList) {
  const Replaced source(SecSetRandomSource, std::make_shared<CountingSource>());
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {}), url(), "pw"));
  EXPECT_TRUE(read("store").starts_with("<?xml version=\"1.0\""));
  const auto list = outerList();
  EXPECT_EQ(list->count(), 3U);
  // The vector is drawn before the salt.
  EXPECT_EQ(list->objectForKey("iv"),
            id(NSData(std::string_view("\1\2\3\4\5\6\7\10\11\12\13\14\15\16\17\20"))));
  EXPECT_EQ(list->objectForKey("salt"), id(NSData(std::string_view("\21\22\23\24\25\26\27\30"))));
  EXPECT_EQ(list->objectForKey("data").as<NSData>()->length() % 16, 0U);
}

TEST_F(EncryptedStoreFile, DrawsVectorAndSaltAnewWithEachWriting) {
  const id content = contentWith("bank", {});
  ASSERT_TRUE(Store::writeEncryptedPropertyList(content, url(), "pw"));
  const auto first = outerList();
  ASSERT_TRUE(Store::writeEncryptedPropertyList(content, url(), "pw"));
  for (const char* key : {"iv", "salt", "data"})
    EXPECT_NE(outerList()->objectForKey(key), first->objectForKey(key)) << key;
}

TEST_F(EncryptedStoreFile, WritesNoNilWithoutAnErrorAndNoOtherObjectWithOne) {
  Error error;
  EXPECT_FALSE(Store::writeEncryptedPropertyList(nullptr, url(), "pw", &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_FALSE(
      Store::writeEncryptedPropertyList(std::make_shared<NSObject>(), url(), "pw", &error));
  EXPECT_EQ(error->code(), NSPropertyListWriteInvalidError);
  EXPECT_FALSE(Store::writeEncryptedPropertyList(1, url("no/such/folder"), "pw", &error));
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), NSFileNoSuchFileError);
  EXPECT_FALSE(
      Store::writeEncryptedPropertyList(1, *NSURL::URLWithString("https://x.org"), "pw", &error));
  EXPECT_EQ(error->code(), NSFileWriteUnsupportedSchemeError);
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(EncryptedStoreFile, ReadsWhatIsMissingAsAFailureAndBrokenListsToo) {
  Error error;
  EXPECT_TRUE(Store::readEncryptedPropertyListForFileAtURL(url(), "pw", &error).isNil());
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  write("store", "<plist><dict>");
  EXPECT_TRUE(Store::readEncryptedPropertyListForFileAtURL(url(), "pw", &error).isNil());
  EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
}

TEST_F(EncryptedStoreFile, ReadsListsOfOtherShapesAsTheyStand) {
  for (const char* text : {"<array/>", "<string>s</string>", "<dict/>",
                           "<dict><key>iv</key><string>1</string><key>salt</key><data/>"
                           "<key>data</key><data/></dict>",
                           // Nothing that could be decrypted: no block, and no whole one.
                           "<dict><key>iv</key><data>AAAAAAAAAAAAAAAAAAAAAA==</data><key>salt</key>"
                           "<data/><key>data</key><data/></dict>",
                           "<dict><key>iv</key><data>AAAAAAAAAAAAAAAAAAAAAA==</data><key>salt</key>"
                           "<data/><key>data</key><data>AAAA</data></dict>"}) {
    write("store", std::string("<plist>") + text + "</plist>");
    Error error;
    const id list = Store::readEncryptedPropertyListForFileAtURL(url(), "pw", &error);
    EXPECT_EQ(error, nullptr) << text;
    EXPECT_EQ(list, NSPropertyListSerialization::propertyListWithData(NSData(read("store")), 0));
    EXPECT_FALSE(list.as<NSMutableDictionary>()) << "parsed as immutable";
  }
}

// A vector of another length is none, and does not stand for zeros.
TEST_F(EncryptedStoreFile, ReadsAListWithAVectorOfAnotherLengthAsItStands) {
  const Replaced source(SecSetRandomSource,
                        std::make_shared<orlftest::SameRandomBytes>(std::uint8_t{0}));
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {}), url(), "pw"));
  EXPECT_EQ(contentOf(), contentWith("bank", {}));
  for (const std::size_t length : {0U, 15U, 17U}) {
    const auto list = std::make_shared<NSMutableDictionary>(outerList()->entries());
    list->setObject(NSData(std::vector<std::uint8_t>(length)), "iv");
    write("other",
          NSPropertyListSerialization::dataWithPropertyList(list, NSPropertyListXMLFormat_v1_0, 0)
              ->text());
    EXPECT_EQ(contentOf("pw", "other"), id(list)) << length;
  }
}

TEST_F(EncryptedStoreFile,
       GivesTheOuterListUnderMostWrongPasswordsAndMutableContentUnderTheRightOne) {
  ASSERT_TRUE(Store::writeEncryptedPropertyList(contentWith("bank", {entryOf("ann", "s3", false)}),
                                                url(), "pw"));
  int outer = 0, failed = 0;
  for (int number = 0; number < 300; ++number) {
    Error error;
    const id list = Store::readEncryptedPropertyListForFileAtURL(
        url(), "wrong" + std::to_string(number), &error);
    if (list.isNil()) {
      ++failed;
      EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
    } else {
      ++outer;
      EXPECT_EQ(error, nullptr);
      EXPECT_EQ(list, id(outerList()));
    }
  }
  EXPECT_EQ(outer + failed, 300);
  EXPECT_GT(outer, 280);
  const auto content = contentOf().as<NSMutableDictionary>();
  ASSERT_TRUE(content);
  EXPECT_TRUE(content->objectForKey("passwords")
                  .as<NSMutableDictionary>()
                  ->objectForKey("bank")
                  .as<NSMutableArray>());
}

}  // namespace
}  // namespace ORLFoundation
