/// Writes rows of comma- or tab-separated text in memory.
///
///     ORLFTabularDataWriter writer(0);
///     writer.writeColumnValue("Coffee, black", 1);
///     writer.writeColumnValue("3.50", 1);
///     writer.writeNewRow(1);
///     writer.string();  // "\"Coffee, black\",3.50\n"
///
/// Its text and `csvRows` are no exact inverses: a value with both a quotation mark and a comma
/// gets a second pair of marks that is not escaped, and line breaks are never quoted. Both are
/// required.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFTabularDataWriter : public NSObject {
 public:
  /// `initWithDelimiterType:`  0 is a comma, any other value a tab.
  explicit ORLFTabularDataWriter(std::int64_t delimiterType) : delimiterType_(delimiterType) {}

  /// `delimiterType`  As given.
  [[nodiscard]] std::int64_t delimiterType() const noexcept { return delimiterType_; }

  /// `encodeValue:`  The value as it stands in a row. A value with a quotation mark has its marks
  /// doubled and is wrapped in marks; one with a tab is wrapped; with commas as delimiters, one
  /// with a comma is wrapped, once more where it was wrapped already. nil is the empty text.
  [[nodiscard]] std::string encodeValue(std::optional<std::string_view> value) const;

  /// `writeColumnValue:span:`  The value, with a delimiter before it where one precedes it in the
  /// row, and an empty quoted field for each further column that it spans. A span of 0 writes
  /// nothing.
  void writeColumnValue(std::optional<std::string_view> value, std::uint64_t span);
  /// `writeNewRow:`  So many line feeds; the next value begins a row. 0 does nothing at all.
  void writeNewRow(std::uint64_t count);

  /// `string`  The text so far; nil while nothing has been written.
  [[nodiscard]] std::optional<std::string> string() const { return string_; }

  /// Whether a value stands in the row already.
  [[nodiscard]] bool hasPrecedingValue() const noexcept { return hasPrecedingValue_; }
  void setHasPrecedingValue(bool value) noexcept { hasPrecedingValue_ = value; }

  [[nodiscard]] std::string className() const override { return "ORLFTabularDataWriter"; }

 private:
  [[nodiscard]] bool separatesByComma() const noexcept { return delimiterType_ == 0; }
  [[nodiscard]] char delimiter() const noexcept { return separatesByComma() ? ',' : '\t'; }
  /// The text, made at the first write.
  std::string& text();

  std::optional<std::string> string_;
  bool hasPrecedingValue_ = false;
  const std::int64_t delimiterType_;
};

}  // namespace ORLFoundation
