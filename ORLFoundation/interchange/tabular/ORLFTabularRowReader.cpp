#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <ORLFoundation/interchange/tabular/internal/ORLFRowParser.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using namespace internal::tabular;

constexpr std::size_t kFirstBuffer = std::size_t{256} << 10;

void checkSeparator(char separator) {
  if (internal::base::isASCII(separator) && separator != '"' &&
      lengthOfLineEnd({&separator, 1}) == 0)
    return;
  throw NSException(NSInvalidArgumentException, "This character can separate no fields.");
}

std::size_t endOfBlanks(std::string_view text) {
  std::size_t at = 0;
  for (;;) {
    const std::string_view rest = text.substr(at);
    const std::size_t blank = std::max(lengthOfLineEnd(rest), lengthOfWhitespace(rest));
    if (blank == 0) return at;
    at += blank;
  }
}

std::size_t endOfLine(std::string_view text, std::size_t from) {
  ORLFStopFinder stops(text, '"');
  std::size_t at = stops.find(from);
  while (at < text.size() && lengthOfLineEnd(text.substr(at)) == 0) at = stops.find(at + 1);
  return at;
}

/// The line on which the text begins that is not blank.
std::uint64_t lineBehindBlanks(std::string_view text) {
  return 1 + linesClosedBy(text.substr(0, endOfBlanks(text)));
}

/// Where the first line that is not blank ends; the length of the text when it does not end there.
std::size_t endOfFirstLine(std::string_view text) { return endOfLine(text, endOfBlanks(text)); }

enum class Reading { kOn, kStopped, kTooLong, kTooWide };

/// Gives all rows that the parser finds.
Reading giveRows(ORLFRowParser& parser, std::size_t longest, const ORLFTabularRowBlock& block) {
  bool stop = false;
  while (!parser.isAtEnd()) {
    const std::size_t start = parser.rowStart();
    const ORLFRowParser::Outcome outcome = parser.read();
    if (outcome == ORLFRowParser::Outcome::kMore) break;
    if (outcome == ORLFRowParser::Outcome::kWide) return Reading::kTooWide;
    if (outcome == ORLFRowParser::Outcome::kBlank) continue;
    if (parser.rowStart() - start > longest) return Reading::kTooLong;
    block({.fields = parser.fields(),
           .lineNumber = parser.line(),
           .endsInMarks = parser.endsInMarks()},
          stop);
    if (stop) return Reading::kStopped;
  }
  return Reading::kOn;
}

/// The text of a source from some place on, as much as is needed.
class Window {
 public:
  Window(const ORLFTabularSource& source, std::size_t longestRow)
      : source_(source), mostSpace_(std::max(longestRow, longestRow + kFirstBuffer)) {}

  [[nodiscard]] std::string_view text() const { return {buffer_.data() + start_, end_ - start_}; }
  [[nodiscard]] bool isLast() const noexcept { return isLast_; }
  void drop(std::size_t count) { start_ += count; }

  /// Reads on, until there is twice as much text as was left: what is left is read anew each time.
  void fill() {
    std::copy(buffer_.data() + start_, buffer_.data() + end_, buffer_.data());
    end_ -= start_;
    start_ = 0;
    if (2 * end_ >= buffer_.size()) grow();
    const std::size_t wanted = std::min(2 * end_, buffer_.size());
    do {
      const std::size_t count = source_(std::span(buffer_).subspan(end_));
      end_ += std::min(count, buffer_.size() - end_);
      isLast_ = count == 0;
    } while (!isLast_ && end_ < wanted);
  }

 private:
  void grow() { buffer_.resize(std::min(std::max(kFirstBuffer, 2 * buffer_.size()), mostSpace_)); }

  const ORLFTabularSource& source_;
  // More than the longest row: text that fills it is refused before there is more to be read.
  const std::size_t mostSpace_;
  std::vector<char> buffer_;
  std::size_t start_ = 0;
  std::size_t end_ = 0;
  bool isLast_ = false;
};

bool fail(std::uint64_t line, const std::string& excess, NSErrorSlot error) {
  if (error == nullptr) return false;
  const std::string text = "The row on line " + std::to_string(line) + " " + excess + ".";
  *error = NSError::errorWithDomain(
      ORLFErrorDomain, ORLFTabularLongRowError,
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, text}}));
  return false;
}

bool failForLongRow(std::uint64_t line, const ORLFTabularLimits& limits, NSErrorSlot error) {
  return fail(line, "is longer than " + std::to_string(limits.longestRow) + " bytes", error);
}

bool failForWideRow(std::uint64_t line, const ORLFTabularLimits& limits, NSErrorSlot error) {
  return fail(line, "has more than " + std::to_string(limits.mostFields) + " fields", error);
}

/// The separator of the first line, which is brought into the window; nil when it is too long.
std::optional<char> separatorOf(Window& window, std::size_t longest) {
  for (;;) {
    const std::string_view text = window.text();
    const std::size_t end = endOfFirstLine(text);
    if (end < text.size() || window.isLast()) return orlfTabularSeparator(text);
    if (text.size() > longest) return std::nullopt;
    window.fill();
  }
}

}  // namespace

char orlfTabularSeparator(std::string_view text) {
  const std::size_t start = endOfBlanks(text);
  const std::string_view line = text.substr(start, endOfLine(text, start) - start);
  // A line that splits at a semicolon between marks splits at the semicolon too.
  return line.find(';') != line.npos ? ';' : ',';
}

void orlfEnumerateTabularRows(std::string_view text, char separator,
                              const ORLFTabularRowBlock& usingBlock) {
  checkSeparator(separator);
  ORLFRowParser parser(separator, std::numeric_limits<std::size_t>::max());
  parser.setText(text, true);
  giveRows(parser, text.size(), usingBlock);
}

bool orlfEnumerateTabularRowsOfSource(const ORLFTabularSource& source,
                                      std::optional<char> separator,
                                      const ORLFTabularRowBlock& usingBlock,
                                      const ORLFTabularLimits& limits, NSErrorSlot error) {
  Window window(source, limits.longestRow);
  if (!separator) separator = separatorOf(window, limits.longestRow);
  if (!separator) return failForLongRow(lineBehindBlanks(window.text()), limits, error);
  checkSeparator(*separator);
  ORLFRowParser parser(*separator, limits.mostFields);
  for (;;) {
    parser.setText(window.text(), window.isLast());
    const Reading reading = giveRows(parser, limits.longestRow, usingBlock);
    if (reading == Reading::kStopped) return true;
    if (reading == Reading::kTooLong) return failForLongRow(parser.line(), limits, error);
    if (reading == Reading::kTooWide) return failForWideRow(parser.nextLine(), limits, error);
    window.drop(parser.rowStart());
    if (window.isLast()) return true;
    if (window.text().size() > limits.longestRow)
      return failForLongRow(parser.nextLine(), limits, error);
    window.fill();
  }
}

}  // namespace ORLFoundation
