#include <tests/support/VectorFile.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <unordered_set>

namespace orlftest {
namespace {

constexpr std::size_t kShownDisagreements = 20;

/// The column, or the key, that is true in rows whose answer changes with the release of ICU.
constexpr const char* kFollowsOtherData = "cldr_sensitive";

/// What a row says of itself, as far as it has been read.
struct RowFacts {
  std::string id;
  bool isRequired = true;
};

/// Counts rows and keeps what failed.
class Reporter {
 public:
  explicit Reporter(const std::filesystem::path& file) { report_.file = file.filename().string(); }

  void fail(const std::string& row, const std::string& message) {
    ++report_.failed;
    report_.disagreements.push_back(placed(row, message));
  }

  /// Runs one row; whatever it throws or answers is its failure. What a row that follows other data
  /// answers is only told.
  template <typename Check>
  void run(const std::string& place, Check check) {
    ++report_.rows;
    RowFacts row;
    std::string message;
    try {
      message = check(row);
    } catch (const std::exception& error) {
      row.isRequired = true;
      message = std::string("exception: ") + error.what();
    } catch (...) {
      row.isRequired = true;
      message = "exception of an unknown kind";
    }
    if (message.empty()) return;
    if (row.isRequired)
      fail(row.id.empty() ? place : row.id, message);
    else
      report_.tolerated.push_back(placed(row.id, message));
  }

  void noteId(const std::string& id) {
    if (id.empty()) throw std::runtime_error("the row has no id");
    if (!ids_.insert(id).second) throw std::runtime_error("the id comes twice");
  }

  VectorReport finish() {
    if (report_.rows == 0 && report_.failed == 0) fail("the file", "no rows");
    return std::move(report_);
  }

 private:
  [[nodiscard]] std::string placed(const std::string& row, const std::string& message) const {
    return report_.file + ": " + row + ": " + message;
  }

  VectorReport report_;
  std::unordered_set<std::string> ids_;
};

std::vector<std::string> splitAtTabs(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t tab = line.find('\t', start);
    fields.push_back(line.substr(start, tab - start));
    if (tab == std::string::npos) return fields;
    start = tab + 1;
  }
}

/// Reads "{HEX}" at the start of the text, appends its character, answers how much was read.
std::size_t appendCodePoint(std::string& text, std::string_view braced) {
  const std::size_t end = braced.find('}');
  std::uint32_t code = 0;
  if (braced.empty() || braced.front() != '{' || end == std::string_view::npos)
    throw std::runtime_error("\\u without {HEX}");
  const char* const last = braced.data() + end;
  const auto [stop, error] = std::from_chars(braced.data() + 1, last, code, 16);
  if (error != std::errc() || stop != last || code > 0x10FFFF)
    throw std::runtime_error("\\u{...} holds no code point");
  ORLFoundation::internal::base::appendUTF8(text, code);
  return end + 1;
}

TsvRow readRow(const std::string& line, const std::vector<std::string>& columns) {
  TsvRow row;
  row.columns = &columns;
  for (const std::string& field : splitAtTabs(line)) {
    if (field == "\\N")
      row.fields.emplace_back(std::nullopt);
    else
      row.fields.emplace_back(unescapedField(field));
  }
  if (row.fields.size() != columns.size())
    throw std::runtime_error(std::to_string(row.fields.size()) + " fields, expected " +
                             std::to_string(columns.size()));
  row.id = row.text("id");
  return row;
}

template <typename Integer>
Integer parsedInteger(std::string_view column, const std::string& text) {
  Integer value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end)
    throw std::runtime_error(std::string(column) + " is no whole number: " + text);
  return value;
}

std::string runJsonRow(const Json& row, const JsonChecks& checkByOperation) {
  for (const char* key : {"op", "in", "out"})
    if (!row.contains(key)) throw std::runtime_error(std::string("the row has no ") + key);
  const auto& operation = row.at("op").get_ref<const std::string&>();
  const auto check = checkByOperation.find(operation);
  if (check == checkByOperation.end()) return "unknown operation " + operation;
  const std::string message = check->second(row.at("in"), row.at("out"));
  return message.empty() ? message : operation + ": " + message;
}

template <typename Run>
void runInTest(const std::string& name, Run run) {
  const VectorReport report = run(vectorFile(name));
  for (const std::string& line : report.tolerated) std::cout << line << " (other data)\n";
  const std::size_t shown = std::min(report.disagreements.size(), kShownDisagreements);
  for (std::size_t index = 0; index < shown; ++index)
    std::cout << report.disagreements[index] << '\n';
  std::cout << report.closingLine() << std::endl;
  EXPECT_TRUE(report.passed()) << report.closingLine();
}

}  // namespace

const std::optional<std::string>& TsvRow::operator[](std::string_view column) const {
  const auto found = std::find(columns->begin(), columns->end(), column);
  if (found == columns->end()) throw std::out_of_range("no column " + std::string(column));
  return fields[static_cast<std::size_t>(found - columns->begin())];
}

bool TsvRow::hasColumn(std::string_view column) const {
  return std::find(columns->begin(), columns->end(), column) != columns->end();
}

const std::string& TsvRow::text(std::string_view column) const {
  const auto& field = (*this)[column];
  if (!field) throw std::runtime_error(std::string(column) + " is nil");
  return *field;
}

std::int64_t TsvRow::integer(std::string_view column) const {
  return parsedInteger<std::int64_t>(column, text(column));
}

std::uint64_t TsvRow::unsignedInteger(std::string_view column) const {
  return parsedInteger<std::uint64_t>(column, text(column));
}

double TsvRow::real(std::string_view column) const {
  const std::string& field = text(column);
  char* end = nullptr;
  const double value = std::strtod(field.c_str(), &end);
  if (field.empty() || end != field.c_str() + field.size())
    throw std::runtime_error(std::string(column) + " is no number: " + field);
  return value;
}

bool TsvRow::boolean(std::string_view column) const {
  const std::string& field = text(column);
  if (field != "true" && field != "false")
    throw std::runtime_error(std::string(column) + " is neither true nor false: " + field);
  return field == "true";
}

std::string VectorReport::closingLine() const {
  return file + ": " + std::to_string(rows) + " rows run, " + std::to_string(failed) + " failed";
}

VectorReport checkTsvFile(const std::filesystem::path& file, const TsvCheck& check) {
  Reporter reporter(file);
  std::ifstream stream(file);
  std::string line;
  if (!std::getline(stream, line)) {
    reporter.fail("the file", "cannot be read");
    return reporter.finish();
  }
  const std::vector<std::string> columns = splitAtTabs(line);
  for (std::size_t number = 2; std::getline(stream, line); ++number) {
    reporter.run("line " + std::to_string(number), [&](RowFacts& facts) {
      const TsvRow row = readRow(line, columns);
      facts.id = row.id;
      reporter.noteId(facts.id);
      facts.isRequired = !row.hasColumn(kFollowsOtherData) || !row.boolean(kFollowsOtherData);
      return check(row);
    });
  }
  return reporter.finish();
}

VectorReport checkJsonRows(const std::filesystem::path& file, const JsonRowCheck& check) {
  Reporter reporter(file);
  std::ifstream stream(file);
  if (!stream) reporter.fail("the file", "cannot be read");
  std::string line;
  for (std::size_t number = 1; std::getline(stream, line); ++number) {
    reporter.run("line " + std::to_string(number), [&](RowFacts& facts) {
      const Json row = Json::parse(line);
      facts.id = row.at("id").get<std::string>();
      reporter.noteId(facts.id);
      facts.isRequired = !row.value(kFollowsOtherData, false);
      return check(row);
    });
  }
  return reporter.finish();
}

VectorReport checkJsonFile(const std::filesystem::path& file, const JsonChecks& checkByOperation) {
  return checkJsonRows(file, [&](const Json& row) { return runJsonRow(row, checkByOperation); });
}

void runTsvVectors(const std::string& stem, const TsvCheck& check) {
  runInTest(stem + ".tsv", [&](const auto& file) { return checkTsvFile(file, check); });
}

void runJsonVectors(const std::string& stem, const JsonChecks& checkByOperation) {
  runInTest(stem + ".jsonl",
            [&](const auto& file) { return checkJsonFile(file, checkByOperation); });
}

void runJsonRows(const std::string& stem, const JsonRowCheck& check) {
  runInTest(stem + ".jsonl", [&](const auto& file) { return checkJsonRows(file, check); });
}

std::filesystem::path vectorFolder() {
  const char* const given = std::getenv("ORLF_VECTORS");
  return given != nullptr ? std::filesystem::path(given) : testDataFolder() / "vectors";
}

std::filesystem::path testDataFolder() { return ORLF_SOURCE_DIR "/tests/data"; }

std::filesystem::path vectorFile(const std::string& name) {
  const std::filesystem::path file = vectorFolder() / name;
  const std::filesystem::path own = testDataFolder() / "vectors" / name;
  // A misspelled folder must not pass for one that happens to lack every file.
  if (file == own || std::filesystem::exists(file) ||
      !std::filesystem::is_directory(vectorFolder()))
    return file;
  std::cout << name << ": not in the folder of ORLF_VECTORS, the repository's is run\n";
  return own;
}

std::string unescapedField(std::string_view field) {
  std::string text;
  for (std::size_t at = 0; at < field.size(); ++at) {
    if (field[at] != '\\') {
      text.push_back(field[at]);
      continue;
    }
    if (++at == field.size()) throw std::runtime_error("a backslash ends the field");
    switch (field[at]) {
      case 't':
        text.push_back('\t');
        break;
      case 'n':
        text.push_back('\n');
        break;
      case 'r':
        text.push_back('\r');
        break;
      case '\\':
        text.push_back('\\');
        break;
      case 'u':
        at += appendCodePoint(text, field.substr(at + 1));
        break;
      default:
        throw std::runtime_error(std::string("unknown escape \\") + field[at]);
    }
  }
  return text;
}

std::string disagreement(const std::optional<std::string>& expected,
                         const std::optional<std::string>& actual) {
  if (expected == actual) return {};
  const auto shown = [](const std::optional<std::string>& text) {
    return text ? '"' + *text + '"' : std::string("nil");
  };
  return "expected " + shown(expected) + ", got " + shown(actual);
}

std::string realDisagreement(double expected, double actual, double tolerance) {
  if (expected == actual || (std::isnan(expected) && std::isnan(actual))) return {};
  if (std::isfinite(expected) && std::fabs(actual - expected) <= tolerance * std::fabs(expected))
    return {};
  return disagreement(expected, actual);
}

}  // namespace orlftest
