/// A folder of its own for a test, gone with everything in it at the end, and a fixture with one.
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

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orlftest {

/// Where a folder for thousands of small changes is made: in memory, where the system offers that.
[[nodiscard]] std::string parentInMemory();

class TemporaryFolder {
 public:
  /// Throws where no folder can be made.
  TemporaryFolder();
  explicit TemporaryFolder(const std::string& parent);
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// Writes a file, folders on the way included, and answers its path.
  std::string write(const std::string& name, std::string_view content) const;
  /// The bytes of a file; throws for one that cannot be read.
  [[nodiscard]] std::string read(const std::string& name) const;
  /// What stands in the folder, or in one inside it, in order.
  [[nodiscard]] std::vector<std::string> names(const std::string& inside = "") const;

 private:
  std::filesystem::path path_;
};

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

  const TemporaryFolder temporary_;
  const std::filesystem::path& folder_ = temporary_.path();
};

}  // namespace orlftest
