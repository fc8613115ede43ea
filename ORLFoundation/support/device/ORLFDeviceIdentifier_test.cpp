
#include <ORLFoundation/support/device/ORLFDeviceIdentifier.h>

#include <ORLFoundation/platform/value/NSUUID.h>
#include <ORLFoundation/support/device/internal/ORLFMachineIdentifier.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr const char* kIdentifier = "0123456789abcdef0123456789abcdef";

class ORLFDeviceIdentifier : public orlftest::TemporaryFolderTest {};

TEST_F(ORLFDeviceIdentifier, IsTheSameTextEachTime) {
  const auto info = NSProcessInfo::processInfo();
  const std::string text = orlfDeviceIdentifier(*info);
  EXPECT_TRUE(NSUUID::initWithUUIDString(text)) << text;
  EXPECT_EQ(orlfDeviceIdentifier(*info), text);
}

TEST_F(ORLFDeviceIdentifier, DependsOnTheMachineAndDoesNotTellIt) {
  const std::string text = internal::device::deviceIdentifierOf(kIdentifier);
  // Stored by applications: it must not change from one release to the next. The UUID of version 5
  // that any other tool makes of the key and the identifier.
  EXPECT_EQ(text, "F823F97C-F149-5F40-B696-C7B1D1FE7760");
  EXPECT_NE(internal::device::deviceIdentifierOf("0123456789abcdef0123456789abcdee"), text);
  EXPECT_NE(internal::device::deviceIdentifierOf(""), text);
}

struct FileCase {
  std::string_view name, content;
  bool isIdentifier;
};
const FileCase kFileCases[] = {
    {"Usual", "0123456789abcdef0123456789abcdef\n", true},
    {"WithoutALineEnd", "0123456789abcdef0123456789abcdef", true},
    {"MoreLines", "0123456789abcdef0123456789abcdef\nmore", true},
    {"Empty", "", false},
    {"NotSetUpYet", "uninitialized\n", false},
    {"Zero", "00000000000000000000000000000000\n", false},
    {"TooShort", "0123456789abcdef0123456789abcde\n", false},
    {"TooLong", "0123456789abcdef0123456789abcdef0\n", false},
    {"UpperCase", "0123456789ABCDEF0123456789ABCDEF\n", false},
    {"WithDashes", "01234567-89ab-cdef-0123-456789abcdef\n", false},
};

TEST_F(ORLFDeviceIdentifier, IsReadFromAFileOf32HexDigits) {
  for (const FileCase& row : kFileCases) {
    const std::vector<std::string> paths{write(std::string(row.name), row.content)};
    EXPECT_EQ(internal::device::machineIdentifierIn(paths),
              row.isIdentifier ? std::optional<std::string>(kIdentifier) : std::nullopt)
        << row.name;
  }
}

TEST_F(ORLFDeviceIdentifier, IsReadFromTheFirstFileThatHoldsOne) {
  const std::vector<std::string> paths{folder_ / "absent", folder_, write("bad", "uninitialized"),
                                       write("good", kIdentifier),
                                       write("later", std::string(32, 'f'))};
  EXPECT_EQ(internal::device::machineIdentifierIn(paths), kIdentifier);
  EXPECT_EQ(internal::device::machineIdentifierIn({}), std::nullopt);
}

}  // namespace
}  // namespace ORLFoundation
