#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>

#include <optional>

namespace orlftest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TemporaryFolder, KeepsFilesUntilItsEnd) {
  std::filesystem::path path;
  {
    const TemporaryFolder folder;
    path = folder.path();
    EXPECT_THAT(folder.names(), IsEmpty());
    const std::string bytes("one\r\n\0two", 9);
    EXPECT_EQ(folder.write("b/c", bytes), (path / "b" / "c").string());
    folder.write("a", "");
    EXPECT_EQ(folder.read("b/c"), bytes);
    EXPECT_EQ(folder.read("a"), "");
    EXPECT_THAT(folder.names(), ElementsAre("a", "b"));
    EXPECT_THAT(folder.names("b"), ElementsAre("c"));
    EXPECT_THROW((void)folder.read("absent"), std::runtime_error);
    EXPECT_THROW((void)folder.read("b"), std::exception);
    std::filesystem::permissions(path / "a", std::filesystem::perms(06750));
    EXPECT_EQ(folder.modeOf("a"), 06750U);
    EXPECT_THROW((void)folder.modeOf("absent"), std::system_error);
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolder, IsNoOtherOnes) {
  const TemporaryFolder one;
  const TemporaryFolder other;
  EXPECT_NE(one.path(), other.path());
}

}  // namespace
}  // namespace orlftest
