/// A fixture with a folder of its own.
///
///     class AtomicFile : public orlftest::TemporaryFolderTest {};
///     TEST_F(AtomicFile, ReplacesAFile) {
///       const std::string file = write("a.csv", "old");
///       ...
///       EXPECT_EQ(read("a.csv"), "new");
///       EXPECT_THAT(names(), ElementsAre("a.csv"));
///     }
#pragma once

#include <gtest/gtest.h>
#include <tests/support/Files.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orlftest {

class TemporaryFolderTest : public testing::Test {
 protected:
  TemporaryFolderTest() = default;
  explicit TemporaryFolderTest(const std::string& parent) : temporary_(parent) {}
  [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }
  std::string write(const std::string& name, std::string_view content) const {
    return temporary_.write(name, content);
  }
  [[nodiscard]] std::string read(const std::string& name) const { return temporary_.read(name); }
  [[nodiscard]] std::vector<std::string> names(const std::string& inside = "") const {
    return temporary_.names(inside);
  }
  [[nodiscard]] mode_t modeOf(const std::string& name) const { return temporary_.modeOf(name); }

  const TemporaryFolder temporary_;
  const std::filesystem::path& folder_ = temporary_.path();
};

}  // namespace orlftest
