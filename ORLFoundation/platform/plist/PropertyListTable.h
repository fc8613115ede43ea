/// A property list as a flat table: a node for each value, the members of all containers in one
/// list, all text and bytes in one pool. Readers fill it, writers and the unarchiver walk it. A
/// container that is referred to twice is there once.
#pragma once

#include <ORLFoundation/platform/base/Wiped.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::plist {

/// What is wrong with a property list that is read or written. Does not leave the folder.
class PropertyListFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Bounds the text and data that are made from a table. A short table can refer to one long text
/// many times, and each text that is made is a copy.
class PropertyListTextBudget {
 public:
  /// For a table of so many nodes, members and bytes.
  explicit PropertyListTextBudget(std::size_t size) noexcept
      : left_(kLeast + kMostReuse * static_cast<std::uint64_t>(size)) {}
  [[nodiscard]] bool take(std::size_t bytes) noexcept {
    if (bytes > left_) return false;
    left_ -= bytes;
    return true;
  }

  /// Each reference may make so many bytes of text, whatever it refers to.
  static constexpr std::uint64_t kMostReuse = 256;

 private:
  static constexpr std::uint64_t kLeast = std::uint64_t{1} << 26;

  std::uint64_t left_;
};

enum class PropertyListKind : std::uint8_t {
  Boolean,
  Integer,          ///< within 64 bits with a sign
  UnsignedInteger,  ///< above the largest signed integer
  Real,
  Date,  ///< seconds since the reference date
  UID,   ///< an index into the objects of a keyed archive
  String,
  Data,
  Array,
  Dictionary,
};

class PropertyListTable {
 public:
  using Index = std::uint32_t;
  using Indexes = std::span<const Index>;

  /// Containers within containers, the outermost included.
  static constexpr std::size_t kDeepestNesting = 512;

  [[nodiscard]] std::size_t nodeCount() const noexcept { return nodes_.size(); }
  /// Nodes, members and bytes together.
  [[nodiscard]] std::size_t size() const noexcept {
    return nodes_.size() + members_.size() + pool_.size();
  }
  [[nodiscard]] Index top() const noexcept { return top_; }
  void setTop(Index top) noexcept { top_ = top; }

  [[nodiscard]] PropertyListKind kind(Index node) const noexcept { return nodes_[node].kind; }
  [[nodiscard]] bool isContainer(Index node) const noexcept {
    return kind(node) >= PropertyListKind::Array;
  }
  // Each is for nodes of its kind only.
  [[nodiscard]] bool boolean(Index node) const noexcept { return nodes_[node].bits != 0; }
  [[nodiscard]] std::int64_t integer(Index node) const noexcept {
    return static_cast<std::int64_t>(nodes_[node].bits);
  }
  [[nodiscard]] std::uint64_t unsignedInteger(Index node) const noexcept {
    return nodes_[node].bits;
  }
  /// For reals and dates.
  [[nodiscard]] double real(Index node) const noexcept;
  [[nodiscard]] Index uid(Index node) const noexcept {
    return static_cast<Index>(nodes_[node].bits);
  }
  /// For strings, in UTF-8, and data.
  [[nodiscard]] std::string_view text(Index node) const noexcept;
  [[nodiscard]] std::span<const std::uint8_t> bytes(Index node) const noexcept;
  /// The members of an array.
  [[nodiscard]] Indexes members(Index node) const noexcept;
  /// The keys of a dictionary and, in the same order, its values.
  [[nodiscard]] Indexes keys(Index node) const noexcept;
  [[nodiscard]] Indexes values(Index node) const noexcept;
  /// The value of a dictionary under a key; the last one of a key that comes twice.
  [[nodiscard]] std::optional<Index> valueForKey(Index node, std::string_view key) const noexcept;

  Index addScalar(PropertyListKind kind, std::uint64_t bits);
  Index addReal(PropertyListKind kind, double value);
  /// The smallest kind that holds the number.
  Index addUnsigned(std::uint64_t value);
  /// For strings and data.
  Index addText(PropertyListKind kind, std::string_view text);
  Index addArray(Indexes members);
  Index addDictionary(Indexes keys, Indexes values);
  void reserve(std::size_t nodes, std::size_t textBytes);

  /// How many values there are when each reference counts as one of its own, at most 2^62. Throws
  /// for a list that holds itself or is nested too deep.
  [[nodiscard]] std::uint64_t expandedCount() const;

 private:
  class ShapeCheck;
  struct Node {
    PropertyListKind kind;
    std::uint32_t count;  // of bytes, members or entries
    std::uint64_t bits;   // the value, or where text or members begin
  };

  Index add(PropertyListKind kind, std::size_t count, std::uint64_t bits);

  std::vector<Node> nodes_;
  std::vector<Index> members_;  // of a dictionary: the keys, then the values
  base::WipedText pool_;        // passwords may be among the texts
  Index top_ = 0;
};

}  // namespace ORLFoundation::internal::plist
