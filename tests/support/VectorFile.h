/// The one reader of vector files: tables of rows (.tsv) and of JSON lines (.jsonl) that tell right
/// from wrong. A test gives the file's stem and a check; every row is run through it.
///
///     TEST(NSCalendar, AgreesWithVectorsOfOffsets) {
///       orlftest::runTsvVectors("calendars_offset", [](const orlftest::TsvRow& row) {
///         const auto calendar = orlftest::calendarFromVector(row);
///         const auto date = *orlftest::dateFromVector(row["date"]);
///         return orlftest::disagreement(row.integer("seconds_from_gmt"),
///                                       calendar->timeZone()->secondsFromGMTForDate(date));
///       });
///     }
///
/// Files are looked for in the folder that the environment variable ORLF_VECTORS names. What it
/// does not hold, and everything where it is not set, is read from tests/data/vectors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orlftest {

using Json = nlohmann::json;

/// A row of a table. A column that the file does not have throws, which fails the row.
struct TsvRow {
  std::string id;

  /// The field under a column; nullopt for nil (\N).
  const std::optional<std::string>& operator[](std::string_view column) const;
  [[nodiscard]] bool hasColumn(std::string_view column) const;
  /// The field, which must not be nil.
  [[nodiscard]] const std::string& text(std::string_view column) const;
  /// The field as a whole decimal number of 64 bits.
  [[nodiscard]] std::int64_t integer(std::string_view column) const;
  [[nodiscard]] std::uint64_t unsignedInteger(std::string_view column) const;
  /// The field as a double, in any form that strtod takes whole.
  [[nodiscard]] double real(std::string_view column) const;
  /// The field "true" or "false".
  [[nodiscard]] bool boolean(std::string_view column) const;

  /// Columns in the order of the file, and the fields under them.
  const std::vector<std::string>* columns = nullptr;
  std::vector<std::optional<std::string>> fields;
};

/// Answers "" when the row agrees, else "expected X, got Y". An exception fails the row too.
using TsvCheck = std::function<std::string(const TsvRow&)>;
using JsonCheck = std::function<std::string(const Json& in, const Json& out)>;
using JsonChecks = std::map<std::string, JsonCheck>;
using JsonRowCheck = std::function<std::string(const Json& row)>;

/// What came of running one file.
struct VectorReport {
  std::string file;
  std::size_t rows = 0;
  std::size_t failed = 0;
  /// "calendars_offset.tsv: calendars_offset-0001: expected 0, got 3600", all of them, in order.
  std::vector<std::string> disagreements;
  /// The same of rows whose "cldr_sensitive" is true: they follow the data of another release of
  /// ICU, and do not count as failed.
  std::vector<std::string> tolerated;

  /// "calendars_offset.tsv: 506 rows run, 0 failed"
  [[nodiscard]] std::string closingLine() const;
  /// No row failed, and there was a row.
  [[nodiscard]] bool passed() const { return rows > 0 && failed == 0; }
};

/// Runs a file without a word to the test framework. A row that cannot be read, an operation
/// without a check and an id that comes twice count as failed rows; so does a file that cannot be
/// opened or holds no row.
[[nodiscard]] VectorReport checkTsvFile(const std::filesystem::path& file, const TsvCheck& check);
[[nodiscard]] VectorReport checkJsonFile(const std::filesystem::path& file,
                                         const JsonChecks& checkByOperation);
/// For rows that name no operation: the check takes the whole row.
[[nodiscard]] VectorReport checkJsonRows(const std::filesystem::path& file,
                                         const JsonRowCheck& check);

/// Runs <stem>.tsv or <stem>.jsonl of the vectors. Prints the first 20 disagreements and a closing
/// line, and fails the running test unless every row agrees.
void runTsvVectors(const std::string& stem, const TsvCheck& check);
void runJsonVectors(const std::string& stem, const JsonChecks& checkByOperation);
void runJsonRows(const std::string& stem, const JsonRowCheck& check);

/// The folder that ORLF_VECTORS names, else that of the repository.
[[nodiscard]] std::filesystem::path vectorFolder();
/// The repository's files for tests; its vectors are in "vectors".
[[nodiscard]] std::filesystem::path testDataFolder();
/// A file, or a sample under "files", of the vectors. Where the folder that ORLF_VECTORS names does
/// not hold it, the repository's is taken and a line says so; where there is no such folder, the
/// path into it is answered, at which there is nothing to read.
[[nodiscard]] std::filesystem::path vectorFile(const std::string& name);

/// A field as written in a table: \t \n \r \\ and \u{HEX} stand for characters. Throws for
/// anything else after a backslash.
[[nodiscard]] std::string unescapedField(std::string_view field);

/// A text; nil of null.
[[nodiscard]] inline std::optional<std::string> textOrNil(const Json& value) {
  return value.is_null() ? std::nullopt : std::optional(value.get<std::string>());
}
/// The value as JSON; null of nil.
template <class Value>
[[nodiscard]] Json jsonOrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

/// "" when both are equal, else "expected X, got Y".
template <typename Expected, typename Actual>
requires requires(std::ostream& stream, const Expected& expected, const Actual& actual) {
  stream << expected << actual;
}
[[nodiscard]] std::string disagreement(const Expected& expected, const Actual& actual) {
  if (expected == actual) return {};
  std::ostringstream text;
  text.precision(17);
  text << std::boolalpha << "expected " << expected << ", got " << actual;
  return text.str();
}
[[nodiscard]] std::string disagreement(const std::optional<std::string>& expected,
                                       const std::optional<std::string>& actual);
/// "" when both are written alike, 1 and 1.0 not.
[[nodiscard]] inline std::string jsonDisagreement(const Json& expected, const Json& actual) {
  return disagreement(expected.dump(), actual.dump());
}
/// Plays each step of a script: "" when all give what is expected, else "step 3: expected X, got Y"
/// of the first that does not.
template <class Play>
[[nodiscard]] std::string scriptDisagreement(const Json& steps, const Json& expected,
                                             const Play& play) {
  if (steps.size() != expected.size()) return "as many results as steps are expected";
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const std::string text = disagreement(expected[i], play(steps[i]));
    if (!text.empty()) return "step " + std::to_string(i) + ": " + text;
  }
  return {};
}
/// "" when the doubles differ by no more than a part of the expected one's size, or are the same
/// infinity, or are both not a number.
[[nodiscard]] std::string realDisagreement(double expected, double actual, double tolerance);

}  // namespace orlftest
