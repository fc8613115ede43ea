#include <tests/support/TemporaryFolder.h>

#include <tests/support/Files.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace orlftest {

std::string parentInMemory() { return folderInMemory(); }

TemporaryFolder::TemporaryFolder() : TemporaryFolder(testing::TempDir()) {}

TemporaryFolder::TemporaryFolder(const std::string& parent) {
  std::string pattern = parent + "/orlfXXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr)
    throw std::system_error(errno, std::generic_category(), pattern);
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, std::string_view content) const {
  const std::filesystem::path file = path_ / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
  return file;
}

std::string TemporaryFolder::read(const std::string& name) const { return contentOf(path_ / name); }

std::vector<std::string> TemporaryFolder::names(const std::string& inside) const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_ / inside))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace orlftest
