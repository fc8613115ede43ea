/// The rows of a table as QIF records, kind by kind.
#pragma once

#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "interchange/typed_table.h"

namespace orlftool {

struct QifRequest {
  std::string account;
  std::int32_t accountType = 0;
  bool isNegated = false;
};

/// Writes the records of one kind. What the writer's encoding lacks is thrown: BadRow in a record,
/// UsageFailure in the account's name.
class QifRecords {
 public:
  virtual ~QifRecords() = default;
  [[nodiscard]] virtual std::span<const FieldRule> rules() const = 0;
  /// Throws UsageFailure where the table lacks columns that the kind needs.
  virtual void check(const TypedTable& table) const = 0;
  virtual void begin(ORLFoundation::ORLFQIFDataWriter& writer) const = 0;
  virtual void write(ORLFoundation::ORLFQIFDataWriter& writer, const TypedRow& row) const = 0;
  virtual void end(ORLFoundation::ORLFQIFDataWriter& writer) const = 0;
};

inline constexpr std::string_view kQifKindNames =
    "transactions, investments, securities, prices or categories";
/// nil for another word.
[[nodiscard]] std::unique_ptr<QifRecords> makeQifRecords(std::string_view kind,
                                                         const QifRequest& request);

inline constexpr std::string_view kAccountTypeNames =
    "bank, cash, card, investment, fund, retirement, asset or liability";
/// The type of an account by its name on the command line, or by its word in the format, "ccard",
/// "invst", "oth a", in either case. nil for another word.
[[nodiscard]] std::optional<std::int32_t> accountTypeNamed(std::string_view name);
[[nodiscard]] bool holdsSecurities(std::int32_t accountType);

}  // namespace orlftool
