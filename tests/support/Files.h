/// Files that tests read.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace orlftest {

/// All bytes of a file. Throws for one that cannot be read.
[[nodiscard]] inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace orlftest
