/// How many attributes a tag has, before it is read: libxml2 takes a time that grows with the
/// square of their number, and tells of none before the tag's end.
#pragma once

#include <cstddef>
#include <string_view>

namespace ORLFoundation::internal::xml {

/// Reads markup in UTF-8, in pieces that follow each other. A value holds no "<", so that every tag
/// is counted afresh from its own; of what is no tag, comments and the like, too many may be
/// counted.
class AttributeCounter {
 public:
  void read(std::string_view markup) noexcept;
  /// Of the tag that has most of them.
  [[nodiscard]] std::size_t most() const noexcept { return most_; }

 private:
  void readInTag(char c) noexcept;

  std::size_t count_ = 0;
  std::size_t most_ = 0;
  bool isInTag_ = false;
  char quote_ = 0;  // around the value that is being read
};

}  // namespace ORLFoundation::internal::xml
