/// Trees of folders told in JSON, for tests: an object is a folder, a text a file with that
/// content, ["link", path] a symbolic link to that path of the same tree.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <tests/support/Files.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace ORLFoundation {

using TreeJson = nlohmann::json;

inline void makeTree(const std::filesystem::path& path, const TreeJson& tree,
                     const std::filesystem::path& root) {
  if (tree.is_object()) {
    std::filesystem::create_directories(path);
    for (const auto& [name, item] : tree.items()) makeTree(path / name, item, root);
  } else if (tree.is_array()) {
    std::filesystem::create_symlink(root / tree.at(1).get<std::string>(), path);
  } else {
    std::ofstream(path, std::ios::binary) << tree.get<std::string>();
  }
}

/// Makes the tree at a path where nothing stands.
inline void makeTree(const std::filesystem::path& path, const TreeJson& tree) {
  makeTree(path, tree, path);
}

inline TreeJson treeAt(const std::filesystem::path& path, const std::filesystem::path& root) {
  namespace fs = std::filesystem;
  if (fs::is_symlink(path)) {
    const std::string target = fs::read_symlink(path).string();
    const std::string prefix = root.string() + "/";
    return {"link", target.starts_with(prefix) ? target.substr(prefix.size()) : target};
  }
  if (!fs::is_directory(path)) return orlftest::contentOf(path);
  TreeJson tree = TreeJson::object();
  for (const auto& entry : fs::directory_iterator(path))
    tree[entry.path().filename().string()] = treeAt(entry.path(), root);
  return tree;
}

inline TreeJson treeAt(const std::filesystem::path& path) { return treeAt(path, path); }

}  // namespace ORLFoundation
