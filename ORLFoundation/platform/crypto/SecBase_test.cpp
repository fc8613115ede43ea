#include <ORLFoundation/platform/crypto/SecBase.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace ORLFoundation {
namespace {

struct StatusCase {
  const char* name;
  OSStatus status;
  OSStatus number;
};

const StatusCase kStatuses[] = {
    {"success", errSecSuccess, 0},
    {"input and output", errSecIO, -36},
    {"argument", errSecParam, -50},
    {"cancelled", errSecUserCanceled, -128},
    {"not available", errSecNotAvailable, -25291},
    {"denied", errSecAuthFailed, -25293},
    {"duplicate", errSecDuplicateItem, -25299},
    {"not found", errSecItemNotFound, -25300},
    {"no default", errSecNoDefaultKeychain, -25307},
    {"no interaction", errSecInteractionNotAllowed, -25308},
    {"key type", errSecUnsupportedKeyType, -67734},
};

TEST(SecBase, StatusesAreNumbersThatOthersKnowAndEachHasASentence) {
  std::set<std::string> sentences;
  for (const StatusCase& row : kStatuses) {
    EXPECT_EQ(row.status, row.number) << row.name;
    const std::string sentence = SecCopyErrorMessageString(row.status);
    EXPECT_TRUE(sentence.ends_with('.')) << row.name << ": " << sentence;
    EXPECT_TRUE(sentences.insert(sentence).second) << row.name << ": " << sentence;
  }
}

TEST(SecBase, OtherStatusesAreNamedByTheirNumbers) {
  EXPECT_EQ(SecCopyErrorMessageString(7), "OSStatus 7");
  EXPECT_EQ(SecCopyErrorMessageString(-25292), "OSStatus -25292");
  EXPECT_EQ(SecCopyErrorMessageString(std::numeric_limits<OSStatus>::min()),
            "OSStatus -2147483648");
}

}  // namespace
}  // namespace ORLFoundation
