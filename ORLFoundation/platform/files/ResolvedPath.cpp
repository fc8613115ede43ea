#include <ORLFoundation/platform/files/ResolvedPath.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::files {
namespace {

constexpr int kMostLinks = 40;  // as many as the kernel follows

/// Puts the names of a path on a stack whose top is the first one.
void pushNames(std::vector<std::string>& names, std::string_view path) {
  const std::size_t below = names.size();
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    if (end > begin) names.emplace_back(path.substr(begin, end - begin));
    begin = end + 1;
  }
  std::reverse(names.begin() + static_cast<std::ptrdiff_t>(below), names.end());
}

}  // namespace

std::optional<std::string> resolvedPath(FileCalls& calls, const std::string& path) {
  if (!path.starts_with('/') || path.find('\0') != path.npos) {
    errno = EINVAL;
    return std::nullopt;
  }
  std::vector<std::string> names;
  pushNames(names, path);
  std::string resolved;  // "" for the root
  for (int links = 0; !names.empty();) {
    const std::string name = names.back();
    names.pop_back();
    if (name == ".") continue;
    if (name == "..") {
      resolved.resize(resolved.empty() ? 0 : resolved.rfind('/'));
      continue;
    }
    std::string item = resolved;
    item.append("/").append(name);
    struct stat status {};
    const bool isThere = calls.status(AT_FDCWD, item, status);
    if (!isThere && errno != ENOENT && errno != ENOTDIR) return std::nullopt;
    if (!isThere || !S_ISLNK(status.st_mode)) {
      resolved = item;
      continue;
    }
    const auto target = calls.readLink(AT_FDCWD, item);
    if (target && ++links > kMostLinks) errno = ELOOP;
    if (!target || links > kMostLinks) return std::nullopt;
    if (target->starts_with('/')) resolved.clear();
    pushNames(names, *target);
  }
  return resolved.empty() ? "/" : resolved;
}

}  // namespace ORLFoundation::internal::files
