#include <ORLFoundation/security/store/internal/PasswordEntries.h>

#include <ORLFoundation/security/store/ORLFEncryptedStore_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::contentWith;
using orlftest::entryOf;
using Error = std::shared_ptr<const NSError>;
using Store = ORLFEncryptedStore;
using Text = std::optional<std::string>;

constexpr std::int32_t kRefused = -25293;

/// An entry of "ann" at "bank": none, or its password and its mark of the keychain.
struct Entry {
  bool exists = false;
  Text password = std::nullopt;
  bool isInKeychain = false;
};
const Entry kNoEntry{};
Entry inFile(const std::string& password) { return {true, password, false}; }
const Entry kInKeychain{true, std::nullopt, true};
const Entry kInNeither{true, std::nullopt, false};
Entry inBoth(const std::string& password) { return {true, password, true}; }

struct SetCase {
  std::string_view name;
  Entry entry;
  bool storeInKeychain;
  Text given;
  Text inKeychain = std::nullopt;
  std::int32_t refusal = 0;
  // What comes of it.
  bool result = true;
  NSInteger errorCode = 0;
  bool isWritten = true;
  Entry entryAfter = {};
  Text inKeychainAfter = std::nullopt;
  std::vector<std::string> calls = {};
};

const std::string kFind = "find ann@bank";
const std::string kUpdate = "update ann@bank";
const std::string kUpdateSilently = "update silently ann@bank";

std::vector<SetCase> setCases() {
  using Calls = std::vector<std::string>;
  const auto written = [](SetCase row, const Entry& after, const Text& keychain, Calls calls) {
    row.entryAfter = after;
    row.inKeychainAfter = keychain;
    row.calls = std::move(calls);
    return row;
  };
  const auto unwritten = [&](SetCase row, const Entry& after, Calls calls = {}) {
    row.isWritten = false;
    return written(row, after, row.inKeychain, std::move(calls));
  };
  const auto refused = [&](SetCase row, Calls calls, NSInteger code) {
    row.refusal = kRefused;
    row.result = code == 0;
    row.errorCode = code;
    return unwritten(row, row.entry, std::move(calls));
  };
  // clang-format off
  return {
      written({"NoEntryFileGiven", kNoEntry, false, "new"}, inFile("new"), {}, {}),
      written({"NoEntryFileGivenWithItem", kNoEntry, false, "new", "old"}, inFile("new"), "old", {}),
      unwritten({"NoEntryFileNil", kNoEntry, false, {}}, kNoEntry),
      written({"NoEntryKeychainGiven", kNoEntry, true, "new"}, kInKeychain, "new", {kUpdate}),
      written({"NoEntryKeychainGivenWithItem", kNoEntry, true, "new", "old"}, kInKeychain, "new", {kUpdate}),
      refused({"NoEntryKeychainRefused", kNoEntry, true, "new"}, {kUpdate}, kRefused),
      unwritten({"NoEntryKeychainNil", kNoEntry, true, {}, "old"}, kNoEntry),

      written({"FoundFileDiffers", inFile("old"), false, "new"}, inFile("new"), {}, {}),
      unwritten({"FoundFileSame", inFile("new"), false, "new"}, inFile("new")),
      written({"FoundFileWasInKeychain", kInKeychain, false, "new", "new"}, inFile("new"), "new", {}),
      written({"FoundFileWasInNeither", kInNeither, false, "new"}, inFile("new"), {}, {}),
      // The mark goes in memory alone: an equal password writes nothing.
      unwritten({"FoundFileSameInBoth", inBoth("new"), false, "new"}, inFile("new")),
      written({"FoundFileDiffersInBoth", inBoth("old"), false, "new"}, inFile("new"), {}, {}),
      written({"FoundFileEmpty", inFile("old"), false, ""}, inFile(""), {}, {}),
      written({"FoundFileNil", inFile("old"), false, {}}, kNoEntry, {}, {}),
      written({"FoundFileNilWithItem", kInKeychain, false, {}, "old"}, kNoEntry, "old", {}),

      written({"FoundKeychainNoItem", inFile("old"), true, "new"}, kInKeychain, "new", {kFind, kUpdate}),
      written({"FoundKeychainNoItemMarked", kInKeychain, true, "new"}, kInKeychain, "new", {kFind, kUpdate}),
      refused({"FoundKeychainNoItemRefused", inFile("old"), true, "new"}, {kFind, kUpdate}, kRefused),
      written({"FoundKeychainSamePlain", inFile("new"), true, "new", "new"}, kInKeychain, "new", {kFind}),
      written({"FoundKeychainSameOtherPlain", inFile("old"), true, "new", "new"}, kInKeychain, "new", {kFind}),
      written({"FoundKeychainSameInBoth", inBoth("new"), true, "new", "new"}, kInKeychain, "new", {kFind}),
      unwritten({"FoundKeychainSameMarked", kInKeychain, true, "new", "new"}, kInKeychain, {kFind}),
      unwritten({"FoundKeychainSameInNeither", kInNeither, true, "new", "new"}, kInNeither, {kFind}),
      written({"FoundKeychainDiffers", kInKeychain, true, "new", "old"}, kInKeychain, "new", {kFind, kUpdateSilently}),
      written({"FoundKeychainDiffersPlain", inFile("old"), true, "new", "old"}, kInKeychain, "new", {kFind, kUpdateSilently}),
      // Required: this failure has no error, and counts as a success that writes nothing.
      refused({"FoundKeychainDiffersRefused", inFile("old"), true, "new", "old"}, {kFind, kUpdateSilently}, 0),
      written({"FoundKeychainNil", inFile("old"), true, {}, "old"}, kNoEntry, "old", {}),
      written({"FoundKeychainNilMarked", kInKeychain, true, {}, "old"}, kNoEntry, "old", {}),
  };
  // clang-format on
}

class SetPassword : public orlftest::EncryptedStoreTest,
                    public testing::WithParamInterface<SetCase> {
 protected:
  static Entry entryIn(const id& content) {
    const auto entries =
        content.as<NSDictionary>()->objectForKey("passwords").valueForKey("bank").as<NSArray>();
    if (!entries || entries->count() == 0) return kNoEntry;
    const auto entry = entries->objectAtIndex(0).as<NSDictionary>();
    EXPECT_EQ(entries->count(), 1U);
    EXPECT_EQ(entry->objectForKey("user"), id("ann"));
    EXPECT_EQ(entry->objectForKey("context"), id(Store::noContext()));
    const id mark = entry->objectForKey("keychain");
    EXPECT_TRUE(mark.isNil() || mark == id("DEFAULT"));
    return {true, entry->objectForKey("password").as<std::string>(), !mark.isNil()};
  }
  static void expectEntry(const Entry& expected, const Entry& found) {
    EXPECT_EQ(found.exists, expected.exists);
    EXPECT_EQ(found.password, expected.password);
    EXPECT_EQ(found.isInKeychain, expected.isInKeychain);
  }
};

TEST_P(SetPassword, MatchesItsCell) {
  const SetCase& row = GetParam();
  const id before =
      row.entry.exists
          ? contentWith("bank", {entryOf("ann", row.entry.password, row.entry.isInKeychain)})
          : contentWith("bank", {});
  ASSERT_TRUE(Store::writeEncryptedPropertyList(before, url(), "pw"));
  if (row.inKeychain) keychain_->passwords["ann@bank"] = *row.inKeychain;
  keychain_->refusal = row.refusal;
  const auto store = open();
  store->setStoreInKeychain(row.storeInKeychain);
  const std::string bytes = read("store");

  Error error;
  EXPECT_EQ(store->setPassword(row.given, "ann", "bank", std::nullopt, &error), row.result);

  EXPECT_EQ(error ? error->code() : 0, row.errorCode);
  EXPECT_EQ(read("store") != bytes, row.isWritten);
  EXPECT_EQ(keychain_->calls, row.calls);
  const auto item = keychain_->passwords.find("ann@bank");
  EXPECT_EQ(item == keychain_->passwords.end() ? std::nullopt : Text(item->second),
            row.inKeychainAfter);
  expectEntry(row.entryAfter, entryIn(store->store()));
  if (row.isWritten) expectEntry(row.entryAfter, entryIn(contentOf()));
}

INSTANTIATE_TEST_SUITE_P(Cells, SetPassword, testing::ValuesIn(setCases()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace ORLFoundation
