
#include <ORLFoundation/platform/process/NSProcessInfo.h>

#include <gtest/gtest.h>
#include <unistd.h>

namespace ORLFoundation {
namespace {

TEST(NSProcessInfo, IsOneObjectThatKnowsTheProcess) {
  const auto info = NSProcessInfo::processInfo();
  EXPECT_EQ(info, NSProcessInfo::processInfo());
  EXPECT_EQ(info->processIdentifier(), ::getpid());
  EXPECT_EQ(info->processName(), "orlf_platform_process_tests");
  EXPECT_EQ(info->className(), "NSProcessInfo");
}

TEST(NSProcessInfo, TellsTheNameOfTheHost) {
  char name[256] = {};
  ASSERT_EQ(::gethostname(name, sizeof name - 1), 0);
  EXPECT_EQ(NSProcessInfo::processInfo()->hostName(), name);
}

}  // namespace
}  // namespace ORLFoundation
