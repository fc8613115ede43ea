/// The order in which prefixes of paths are tried.
#pragma once

#include <string>
#include <string_view>

namespace ORLFoundation::internal {

class PathPrefix {
 public:
  /// Broken bytes stand for U+FFFD.
  explicit PathPrefix(std::string_view utf8);

  /// More UTF-16 units come first; with equally many it is the order of `compare:`, in which
  /// canonically equal texts are the same.
  [[nodiscard]] bool isBefore(const PathPrefix& other) const;

 private:
  std::u16string units_;
};

}  // namespace ORLFoundation::internal
