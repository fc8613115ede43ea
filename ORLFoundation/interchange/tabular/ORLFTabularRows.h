/// All rows of a separated text, kept with the text that they were read from.
#pragma once

#include <cstddef>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// Reads like an array of arrays of texts. The fields are views that hold as long as the object, or
/// the one that it was moved into: a row costs no allocation of its own.
///
///     for (const ORLFTabularRows::Row row : csvRows(scanner)) print(row.front(), row.size());
class ORLFTabularRows {
 public:
  using Row = std::span<const std::string_view>;

  /// The rows that `orlfEnumerateTabularRows` tells of a text, which is copied; raises what that
  /// raises.
  ORLFTabularRows(std::string_view text, char separator);
  ORLFTabularRows(ORLFTabularRows&&) = default;
  ORLFTabularRows& operator=(ORLFTabularRows&&) = default;
  ORLFTabularRows(const ORLFTabularRows&) = delete;
  ORLFTabularRows& operator=(const ORLFTabularRows&) = delete;
  ~ORLFTabularRows() = default;

  [[nodiscard]] bool empty() const noexcept { return rows_.empty(); }
  [[nodiscard]] std::size_t size() const noexcept { return rows_.size(); }
  /// The row at an index below size().
  [[nodiscard]] Row operator[](std::size_t index) const noexcept { return rows_[index]; }
  [[nodiscard]] auto begin() const noexcept { return rows_.begin(); }
  [[nodiscard]] auto end() const noexcept { return rows_.end(); }

 private:
  [[nodiscard]] std::vector<std::string_view>& blockFor(std::size_t count);

  // Containers whose contents stay where they are when they are moved.
  std::vector<char> text_;
  std::deque<std::string> joined_;  // fields that stand in the text in several pieces
  std::vector<std::vector<std::string_view>> fields_;  // in blocks: a row lies in one of them
  std::vector<Row> rows_;
};

}  // namespace ORLFoundation
