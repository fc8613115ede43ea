/// Amounts in columns of a table, whose decimal mark nothing but the column itself tells.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "interchange/amount_text.h"

namespace orlftool {

/// What `readColumnNumber` takes, for messages.
inline constexpr std::string_view kColumnNumberForm =
    "an amount such as -1,250.75, (12.50), $5 or 5 EUR";

/// Reads an amount under a mark, or a fraction such as "50 1/2" as the library reads it. nil for
/// other text: "5 DR", "1,23" with a point as the mark, 39 digits.
[[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> readColumnNumber(std::string_view text,
                                                                             DecimalMark mark);

/// Finds the mark from all amounts of a file. "1,234.5", "12,50" and "1.234.567" tell it, "1,234"
/// may be either.
class DecimalMarkJudge {
 public:
  /// An amount and where it stands: its line, 0 for none, and for those who show it its column.
  struct Witness {
    std::string text;
    std::uint64_t line = 0;
    std::size_t column = 0;
  };

  void add(const AmountText& amount, std::string_view text, std::uint64_t line,
           std::size_t column = 0);
  /// Adds what another judge has seen, behind what this one has.
  void add(const DecimalMarkJudge& later);

  enum class Verdict : std::uint8_t { Point, Comma, Contradiction, Open, NoMark };
  [[nodiscard]] Verdict verdict() const;
  /// The first amount that fits a mark alone.
  [[nodiscard]] const Witness& witnessOf(DecimalMark mark) const {
    return mark == DecimalMark::Point ? point_ : comma_;
  }
  /// The first amount with a mark that fits both.
  [[nodiscard]] const Witness& openWitness() const { return open_; }

 private:
  Witness point_, comma_, open_;
};

/// A mark, and the row that decided it in words; no reason where no amount tells the mark and none
/// needs it.
struct ColumnMark {
  DecimalMark mark = DecimalMark::Point;
  std::string reason;
};
/// The mark that a judge found. Throws JobFailure where rows contradict each other, and where there
/// are amounts that only the mark could tell. `name` stands for the file in messages.
[[nodiscard]] ColumnMark columnMark(const DecimalMarkJudge& judge, const std::string& name);

}  // namespace orlftool
