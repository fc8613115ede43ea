/// Files that tests, benchmarks and fuzz targets read, and folders in which they keep their own.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace orlftest {

/// All bytes of a file. Throws for one that cannot be read.
[[nodiscard]] inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The fields between tabs of each line but the first, which names the columns. Throws for a file
/// that cannot be read.
[[nodiscard]] inline std::vector<std::vector<std::string>> tabbedRows(
    const std::filesystem::path& file) {
  std::istringstream stream(contentOf(file));
  std::vector<std::vector<std::string>> rows;
  std::string line;
  std::getline(stream, line);
  while (std::getline(stream, line)) {
    auto& fields = rows.emplace_back();
    std::istringstream rest(line);
    for (std::string field; std::getline(rest, field, '\t');) fields.push_back(field);
  }
  return rows;
}

/// How many entries a folder has.
[[nodiscard]] inline std::size_t entryCount(const std::filesystem::path& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

/// Where a folder for thousands of small changes is made: in memory, where the system offers that.
[[nodiscard]] inline std::string parentInMemory() {
  constexpr const char* kMemory = "/dev/shm";
  return ::access(kMemory, W_OK | X_OK) == 0 ? kMemory
                                             : std::filesystem::temp_directory_path().string();
}

/// A folder of its own, gone with everything in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder() : TemporaryFolder(std::filesystem::temp_directory_path().string()) {}
  /// Throws where no folder can be made.
  explicit TemporaryFolder(const std::string& parent) {
    std::string pattern = parent + "/orlfXXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
      throw std::system_error(errno, std::generic_category(), pattern);
    path_ = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// Writes a file, folders on the way included, and answers its path.
  std::string write(const std::string& name, std::string_view content) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
    return file;
  }
  /// The bytes of a file; throws for one that cannot be read.
  [[nodiscard]] std::string read(const std::string& name) const { return contentOf(path_ / name); }
  /// What stands in the folder, or in one inside it, in order.
  [[nodiscard]] std::vector<std::string> names(const std::string& inside = "") const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_ / inside))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  /// The rights of what stands under a name, and its bits of set-id; throws where nothing does.
  [[nodiscard]] mode_t modeOf(const std::string& name) const {
    struct stat status {};
    if (::lstat((path_ / name).c_str(), &status) != 0)
      throw std::system_error(errno, std::generic_category(), name);
    return status.st_mode & 07777;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace orlftest
