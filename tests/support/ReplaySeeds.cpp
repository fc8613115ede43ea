// Stands in for libFuzzer where the compiler has none: runs a fuzz target once for every file that
// it is given, folders taken whole. Options, which begin with a dash, are left to libFuzzer.
#include <tests/support/Files.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& file) {
  const std::string bytes = orlftest::contentOf(file);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

std::vector<std::filesystem::path> filesAt(const std::filesystem::path& place) {
  if (!std::filesystem::is_directory(place)) return {place};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(place))
    if (entry.is_regular_file()) files.push_back(entry.path());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t replayed = 0;
  for (int index = 1; index < argc; ++index) {
    const std::string argument = argv[index];
    if (!argument.empty() && argument.front() == '-') continue;
    if (!std::filesystem::exists(argument)) {
      std::cerr << argument << ": no such file or folder\n";
      return 1;
    }
    for (const auto& file : filesAt(argument)) {
      replay(file);
      ++replayed;
    }
  }
  std::cout << replayed << " inputs replayed\n";
  return replayed > 0 ? 0 : 1;
}
