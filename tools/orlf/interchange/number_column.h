/// Amounts in columns of a table, whose decimal mark nothing but the column itself tells.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

enum class DecimalMark : std::uint8_t { Point, Comma };

/// What `readColumnNumber` takes, for messages.
inline constexpr std::string_view kColumnNumberForm =
    "an amount such as -1,250.75, (12.50), $5 or 5 EUR";

/// Reads digits in groups of three (of two in India) with a decimal mark, a sign at either end or
/// brackets for a negative, a currency's sign or its three letters; a fraction such as "50 1/2" as
/// the library reads it. nil for other text: "5 DR", "1,23" with a point as the mark, 39 digits.
[[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> readColumnNumber(std::string_view text,
                                                                             DecimalMark mark);

/// Finds the mark from all amounts of a file. "1,234.5", "12,50" and "1.234.567" tell it, "1,234"
/// may be either.
class DecimalMarkJudge {
 public:
  void add(std::string_view text, std::uint64_t line);

  struct Finding {
    DecimalMark mark = DecimalMark::Point;
    /// The row that decided, in words; empty where no amount tells the mark and none needs it.
    std::string reason;
  };
  /// Throws JobFailure where rows contradict each other, and where there are amounts that only the
  /// mark could tell. `name` stands for the file in messages.
  [[nodiscard]] Finding finding(const std::string& name) const;

 private:
  struct Witness {
    std::string text;
    std::uint64_t line = 0;  // 0 for none
  };
  static void note(Witness& witness, std::string_view text, std::uint64_t line);

  Witness point_, comma_, either_;
};

}  // namespace orlftool
