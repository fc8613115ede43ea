/// Files that tests and fuzz targets read, and where they keep their own.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
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

/// A folder that others write to as well: in memory, where the system offers that.
[[nodiscard]] inline std::string folderInMemory() {
  constexpr const char* kMemory = "/dev/shm";
  return ::access(kMemory, W_OK | X_OK) == 0 ? kMemory
                                             : std::filesystem::temp_directory_path().string();
}

}  // namespace orlftest
