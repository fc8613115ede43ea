/// Plan files: a JSON object with a zone, a rounding rule, an end and segments. docs/plan-file.md
/// describes the fields.
///
///     PlanFile file = parsePlanFile(R"({"segments": [{"start": "2024-01-01",
///         "principal": "1000", "contribution": "50", "rate": "3%"}]})", "savings.json", {});
///
/// Decimals are taken from their text as it stands, JSON numbers too: no binary number lies in
/// between.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// One stretch of the plan. Rates are fractions of one per year.
struct PlanTerms {
  std::string name;
  ORLFoundation::NSDate start;
  std::optional<ORLFoundation::NSDecimalNumber> principal;
  std::optional<ORLFoundation::NSDecimalNumber> contribution;
  ORLFoundation::NSCalendarUnit frequency = ORLFoundation::NSCalendarUnitMonth;
  std::int64_t interval = 1;
  std::optional<ORLFoundation::NSDecimalNumber> rate;
  std::optional<ORLFoundation::NSDecimalNumber> inflation;
};

struct PlanRounding {
  std::int16_t scale = 2;
  ORLFoundation::NSRoundingMode mode = ORLFoundation::NSRoundPlain;
};

/// A plan file that has been read: segments are there, in ascending order of their starts, and the
/// end lies after the last of them. No end means an open plan.
struct PlanFile {
  std::string title;
  std::shared_ptr<ORLFoundation::NSCalendar> calendar;
  std::optional<PlanRounding> rounding;
  std::optional<ORLFoundation::NSDate> end;
  std::vector<PlanTerms> segments;
};

/// What holds where the file says nothing, and what overrules it.
struct PlanFileDefaults {
  /// Wins over the file's; UTC where neither names one.
  std::optional<std::string> zone;
  std::string locale = "en_US";
};

/// Reads a plan from text. `name` stands for the file in messages. Throws JobFailure with one line,
/// "name:line: field: expected ..., got ...", for text that is no plan: broken JSON, a field that
/// is unknown, doubled, missing or of the wrong kind, starts out of order.
[[nodiscard]] PlanFile parsePlanFile(std::string_view text, const std::string& name,
                                     const PlanFileDefaults& defaults);
/// The same for a file. Files above 64 MB are refused.
[[nodiscard]] PlanFile readPlanFile(const std::string& path, const PlanFileDefaults& defaults);

}  // namespace orlftool
