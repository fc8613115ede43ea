/// The fields of a plan file as data, and a plan file as plain fields: what each text says and the
/// line where it stands, before any of it is taken for a date or a decimal.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// Where in the file a field may stand.
enum class PlanPlace { kOutside, kRoot, kRounding, kSegmentList, kSegment };

/// What JSON kind a field takes.
enum class PlanFieldForm { kText, kInteger, kDecimal, kRounding, kSegmentList };

struct PlanField {
  PlanPlace place;
  std::string_view name;
  PlanFieldForm form;
  std::string_view expected;  // completes "expected ..."
  bool required = false;
};

inline constexpr std::string_view kDecimalExpected = "a decimal text";
inline constexpr std::string_view kRateExpected = "a decimal text, a fraction or a percentage";
inline constexpr std::string_view kPlanDateExpected =
    "an ISO 8601 date or date-time such as \"2024-01-31\"";
inline constexpr std::string_view kFrequencyExpected =
    R"("daily", "weekly", "monthly", "quarterly" or "yearly")";

inline constexpr std::array kPlanFields{
    PlanField{PlanPlace::kRoot, "title", PlanFieldForm::kText, "a text"},
    PlanField{PlanPlace::kRoot, "zone", PlanFieldForm::kText,
              "a time zone such as \"America/New_York\""},
    PlanField{PlanPlace::kRoot, "firstWeekday", PlanFieldForm::kInteger,
              "a whole number from 1 (Sunday) to 7"},
    PlanField{PlanPlace::kRoot, "minimumDaysInFirstWeek", PlanFieldForm::kInteger,
              "a whole number from 1 to 7"},
    PlanField{PlanPlace::kRoot, "rounding", PlanFieldForm::kRounding,
              "an object with scale and mode"},
    PlanField{PlanPlace::kRoot, "end", PlanFieldForm::kText, kPlanDateExpected},
    PlanField{PlanPlace::kRoot, "segments", PlanFieldForm::kSegmentList,
              "a list of at least one segment", true},
    PlanField{PlanPlace::kRounding, "scale", PlanFieldForm::kInteger,
              "a whole number from -128 to 127", true},
    PlanField{PlanPlace::kRounding, "mode", PlanFieldForm::kText,
              R"("plain", "down", "up" or "bankers")"},
    PlanField{PlanPlace::kSegment, "name", PlanFieldForm::kText, "a text"},
    PlanField{PlanPlace::kSegment, "start", PlanFieldForm::kText, kPlanDateExpected, true},
    PlanField{PlanPlace::kSegment, "principal", PlanFieldForm::kDecimal, kDecimalExpected},
    PlanField{PlanPlace::kSegment, "contribution", PlanFieldForm::kDecimal, kDecimalExpected},
    PlanField{PlanPlace::kSegment, "frequency", PlanFieldForm::kText, kFrequencyExpected},
    PlanField{PlanPlace::kSegment, "interval", PlanFieldForm::kInteger,
              "a whole number from 1 to 100000"},
    PlanField{PlanPlace::kSegment, "rate", PlanFieldForm::kDecimal, kRateExpected},
    PlanField{PlanPlace::kSegment, "inflation", PlanFieldForm::kDecimal, kRateExpected},
};

/// The field of that name there, or nullptr.
[[nodiscard]] const PlanField* findPlanField(PlanPlace place, std::string_view name);
/// "title, zone and end", the names that a place knows.
[[nodiscard]] std::string planFieldNames(PlanPlace place);

/// One value of the file. `quoted` tells a JSON text from a JSON number.
struct PlanValue {
  std::string text;
  bool quoted = false;
  std::size_t line = 0;
};

/// One object of the file: its values by name (those that are null are left out).
struct PlanObject {
  std::string path;  // "segments[2]", empty for the root
  std::size_t line = 0;
  std::map<std::string, PlanValue, std::less<>> values;
};

struct PlanFields {
  PlanObject root;
  PlanObject rounding;
  bool hasRounding = false;
  std::vector<PlanObject> segments;
};

/// "segments[2].rate", or "rate" for the root.
[[nodiscard]] std::string planFieldPath(const std::string& object, std::string_view field);

/// Takes JSON text apart into fields. Throws JobFailure for broken JSON and for unknown, doubled
/// and missing fields and wrong JSON kinds.
[[nodiscard]] PlanFields readPlanFields(std::string_view text, const std::string& name);

}  // namespace orlftool
