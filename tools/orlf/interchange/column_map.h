/// Which column of a table holds which field: by number, by heading, or by headings that are known.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

enum class FieldType : std::uint8_t { Text, Date, Number };

/// A field that a command takes from a table.
struct FieldRule {
  std::string_view name;
  FieldType type = FieldType::Text;
  bool isRequired = false;
  /// Headings that stand for it where no map is given, in lower case, "|" between them.
  std::string_view headings = {};
};

class ColumnMap {
 public:
  /// "date=1,payee=Description": columns count from 1, headings count without regard to the case
  /// of ASCII letters and to blanks around them. Without a map the rules' own headings hold. Throws
  /// UsageFailure for an unknown field, one named twice, one that is needed and not named, and for
  /// column 0.
  ColumnMap(std::span<const FieldRule> rules, const std::optional<std::string>& map);

  /// Whether only the row of headings tells the columns.
  [[nodiscard]] bool needsHeadings() const noexcept { return needsHeadings_; }
  /// Takes the row of headings. Throws JobFailure for headings that are not there, or there twice.
  void takeHeadings(std::span<const std::string_view> headings, const std::string& file);

  /// The field's text in a row: as it stands, empty beyond the row's end.
  [[nodiscard]] std::string_view text(std::size_t field,
                                      std::span<const std::string_view> row) const;
  [[nodiscard]] bool has(std::size_t field) const { return columns_.at(field).has_value(); }

 private:
  void takeWord(const std::string& word);
  void requireFields() const;
  [[nodiscard]] std::size_t fieldNamed(const std::string& name) const;

  std::span<const FieldRule> rules_;
  std::vector<std::string> headings_;  // a field's heading, empty for none
  std::vector<std::optional<std::size_t>> columns_;
  bool isMapped_;
  bool needsHeadings_ = false;
};

}  // namespace orlftool
