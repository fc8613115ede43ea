#include "interchange/csv_rows.h"

#include <ORLFoundation/interchange/tabular/ORLFTabularDataWriter.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <ostream>
#include <span>
#include <utility>

#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::array<std::pair<std::string_view, char>, 3> kSeparators{
    {{"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}}};

/// Whether comma-separated text gives the value back: the writer wraps one with a comma once more
/// where a quotation mark or a tab has had it wrapped already.
bool isReadableBetweenCommas(std::string_view value) {
  return value.find(',') == value.npos || value.find_first_of("\"\t") == value.npos;
}

/// The writer puts no marks around line ends, so they would begin rows.
std::string withoutLineEnds(std::string_view value) {
  std::string result(value);
  std::replace_if(
      result.begin(), result.end(), [](char c) { return c >= '\n' && c <= '\r'; }, ' ');
  for (const std::string_view lineEnd : {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"})
    for (std::size_t at = result.find(lineEnd); at != result.npos; at = result.find(lineEnd, at))
      result.replace(at, lineEnd.size(), " ");
  return result;
}

/// Drops the first lines of a text that comes in pieces.
class LineSkipper {
 public:
  explicit LineSkipper(std::uint64_t lines) : left_(lines) {}

  /// Moves what is kept of a piece to its front and tells its length.
  std::size_t keep(std::span<char> piece) {
    std::size_t at = 0;
    while (at < piece.size() && (left_ != 0 || isAfterReturn_)) {
      const char c = piece[at];
      const bool endsReturn = std::exchange(isAfterReturn_, c == '\r' && left_ != 0) && c == '\n';
      if (left_ == 0 && !endsReturn) break;
      if (!endsReturn && (c == '\n' || c == '\r')) --left_;
      ++at;
    }
    std::copy(piece.begin() + static_cast<std::ptrdiff_t>(at), piece.end(), piece.begin());
    return piece.size() - at;
  }

 private:
  std::uint64_t left_;
  bool isAfterReturn_ = false;
};

}  // namespace

std::optional<char> separatorNamed(std::string_view name) {
  const auto* const found = std::find_if(kSeparators.begin(), kSeparators.end(),
                                         [name](const auto& each) { return each.first == name; });
  return found == kSeparators.end() ? std::nullopt : std::optional(found->second);
}

std::optional<char> readSeparatorOption(const std::optional<std::string>& name) {
  if (!name) return std::nullopt;
  if (const auto separator = separatorNamed(*name)) return separator;
  throw UsageFailure("--separator: expected " + std::string(kSeparatorNames) + ", got " +
                     quotedForMessage(*name));
}

void readTable(TextInput& input, std::optional<char> separator,
               const ORLFTabularRowBlock& usingBlock, std::uint64_t skipLines) {
  LineSkipper skipper(skipLines);
  const auto source = [&](std::span<char> buffer) {
    for (;;) {
      const std::size_t count = input.read(buffer);
      const std::size_t kept = skipper.keep(buffer.first(count));
      if (kept != 0 || count == 0) return kept;
    }
  };
  const auto block = [&](const ORLFTabularRow& row, bool& stop) {
    ORLFTabularRow counted = row;
    counted.lineNumber += skipLines;
    usingBlock(counted, stop);
  };
  std::shared_ptr<const NSError> error;
  if (!orlfEnumerateTabularRowsOfSource(source, separator, block, {}, &error))
    throw JobFailure(input.name() + ": " + error->localizedDescription() +
                     (skipLines == 0 ? "" : " (of those behind the lines that are skipped)"));
}

RowPrinter::RowPrinter(Session& session, std::string name, std::int64_t delimiterType)
    : session_(session), name_(std::move(name)), delimiterType_(delimiterType) {}

void RowPrinter::print(const ORLFTabularRow& row) {
  if (session_.options.json)
    printJsonRow(row);
  else
    printText(row);
  ++rows_;
  if (row.endsInMarks) openLine_ = row.lineNumber;
  if (!session_.out) throw JobFailure("the output cannot be written");
}

void RowPrinter::printText(const ORLFTabularRow& row) {
  ORLFTabularDataWriter writer(delimiterType_);
  for (const std::string_view field : row.fields) {
    if (delimiterType_ == 0 && !isReadableBetweenCommas(field))
      throw JobFailure(name_ + ":" + std::to_string(row.lineNumber) +
                       ": a comma beside a quotation mark or tab has no place in comma-separated "
                       "text: " +
                       quotedForMessage(field) + "; --delimiter tab prints it");
    const std::string value = withoutLineEnds(field);
    if (value != field) ++brokenValues_;
    writer.writeColumnValue(value, 1);
  }
  writer.writeNewRow(1);
  session_.out << *writer.string();
}

void RowPrinter::printJsonRow(const ORLFTabularRow& row) {
  const Json fields(std::vector<std::string>(row.fields.begin(), row.fields.end()));
  session_.out << (rows_ == 0 ? "[\n  " : ",\n  ")
               << fields.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void RowPrinter::finish() {
  if (session_.options.json) session_.out << (rows_ == 0 ? "[]\n" : "\n]\n");
  if (rows_ == 0) printNote(session_, name_ + ": no row holds anything");
  if (brokenValues_ > 0)
    printNote(session_, "line ends in " + std::to_string(brokenValues_) +
                            (brokenValues_ == 1 ? " value" : " values") + " became blanks");
  if (openLine_ > 0)
    printNote(session_, name_ + ":" + std::to_string(openLine_) +
                            ": the file ends between quotation marks in the row of this line");
}

}  // namespace orlftool
