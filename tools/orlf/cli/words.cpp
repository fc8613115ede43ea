#include "cli/words.h"

#include <array>

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct UnitWords {
  std::string_view frequency;
  std::string_view unit;
  NSCalendarUnit code;
};

constexpr std::array kUnits{
    UnitWords{"daily", "day", NSCalendarUnitDay},
    UnitWords{"weekly", "week", NSCalendarUnitWeekOfYear},
    UnitWords{"monthly", "month", NSCalendarUnitMonth},
    UnitWords{"quarterly", "quarter", NSCalendarUnitQuarter},
    UnitWords{"yearly", "year", NSCalendarUnitYear},
};

struct ModeWord {
  std::string_view word;
  NSRoundingMode mode;
};

constexpr std::array kModes{
    ModeWord{"plain", NSRoundPlain},
    ModeWord{"down", NSRoundDown},
    ModeWord{"up", NSRoundUp},
    ModeWord{"bankers", NSRoundBankers},
};

}  // namespace

std::optional<NSCalendarUnit> frequencyNamed(std::string_view word) {
  for (const UnitWords& row : kUnits)
    if (row.frequency == word) return row.code;
  return std::nullopt;
}

std::optional<NSCalendarUnit> unitNamed(std::string_view word) {
  for (const UnitWords& row : kUnits)
    if (row.unit == word) return row.code;
  return std::nullopt;
}

std::optional<NSRoundingMode> roundingModeNamed(std::string_view word) {
  for (const ModeWord& row : kModes)
    if (row.word == word) return row.mode;
  return std::nullopt;
}

}  // namespace orlftool
