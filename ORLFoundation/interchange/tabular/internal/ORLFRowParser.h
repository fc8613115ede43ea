/// Takes one row after another off a tabular text.
#pragma once

#include <ORLFoundation/interchange/tabular/internal/ORLFStopFinder.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::tabular {

/// The length in bytes of the line end that a text begins with, 0 when it begins with none. The two
/// bytes of CR LF are two of them.
[[nodiscard]] std::size_t lengthOfLineEnd(std::string_view text) noexcept;
/// The same for one white-space character other than a line end.
[[nodiscard]] std::size_t lengthOfWhitespace(std::string_view text) noexcept;

/// The lines that end in a text. CR LF ends one.
[[nodiscard]] std::uint64_t linesClosedBy(std::string_view text) noexcept;

class ORLFRowParser {
 public:
  enum class Outcome {
    kRow,    // fields() and line() tell it
    kBlank,  // a row without fields, which vanishes
    kMore,   // the text ends in the row, and more of it may come
    kWide,   // a row of too many fields
  };

  ORLFRowParser(char separator, std::size_t mostFields)
      : separator_(separator), mostFields_(mostFields) {}

  /// Turns to another text, which begins with a row. It is kept as a view, and so are fields that
  /// stand in it in one piece. Behind a text that is not the `last`, more may come.
  void setText(std::string_view text, bool last);
  [[nodiscard]] bool isAtEnd() const noexcept { return rowStart_ >= text_.size(); }
  /// Where the next row begins.
  [[nodiscard]] std::size_t rowStart() const noexcept { return rowStart_; }

  /// Reads the next row. When more is needed, the place stays where the row begins.
  Outcome read();
  [[nodiscard]] std::span<const std::string_view> fields() const noexcept { return fields_; }
  /// The line on which the row that was read begins, from 1.
  [[nodiscard]] std::uint64_t line() const noexcept { return rowLine_; }
  /// Whether the text ended between marks in the row that was read.
  [[nodiscard]] bool endsInMarks() const noexcept { return isQuoted_; }
  /// The line on which the next row begins.
  [[nodiscard]] std::uint64_t nextLine() const noexcept { return nextLine_; }

 private:
  enum class Step { kOn, kRowOver, kMore, kWide };

  Step step(std::size_t stop);
  Step passLineEnds(std::size_t lineEnd);
  Step passMark();
  Step passSeparator();
  void beginRow();
  bool passPlainField();
  Step passBlanks();
  /// Whether no white space, and nothing that may be some, stands here.
  [[nodiscard]] bool beginsPlainly() const noexcept {
    return at_ < text_.size() && text_[at_] > ' ';
  }
  void append(std::string_view piece);
  void endField();
  void endRow();
  /// Whether the field that is being read holds anything. One in pieces does: marks alone begin
  /// none.
  [[nodiscard]] bool holdsField() const noexcept { return isPieced_ || !field_.empty(); }
  [[nodiscard]] std::string_view ahead() const noexcept { return text_.substr(at_); }
  /// Whether the last bytes may be the beginning of a longer character.
  [[nodiscard]] bool mayBeCutOff() const noexcept;

  const char separator_;
  const std::size_t mostFields_;
  std::string_view text_;
  bool isLast_ = true;
  ORLFStopFinder stops_{"", ','};
  std::size_t rowStart_ = 0;
  std::uint64_t nextLine_ = 1;
  std::uint64_t rowLine_ = 1;

  // Of the row that is being read.
  std::size_t at_ = 0;
  std::uint64_t lineEnds_ = 0;
  bool isQuoted_ = false;
  std::string_view field_;
  std::vector<std::string_view> fields_;
  // Fields that stand in the text in several pieces. A deque: views into it stay.
  std::deque<std::string> pieced_;
  std::size_t piecedCount_ = 0;
  std::size_t joinedBytes_ = 0;
  bool isPieced_ = false;
};

}  // namespace ORLFoundation::internal::tabular
