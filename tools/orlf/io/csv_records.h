/// Comma-separated text as records of fields, each with the line on which it begins.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct CsvField {
  std::string text;
  std::size_t line = 1;
};
using CsvRecord = std::vector<CsvField>;

/// What is wrong with the quotes of a field.
struct CsvFault {
  std::size_t line;
  std::size_t field;  // from 0
  std::string_view expected;
  std::string got;
};

/// Reads the record at the front of a text, one after the other. Fields in double quotes may hold
/// commas, line ends and doubled quotes; others lose the blanks around them. Lines end in LF, CR LF
/// or CR; lines of blanks are passed over.
class CsvReader {
 public:
  /// A byte order mark at the start is passed over. `fail` is called for quotes that do not close
  /// and for text after a closing quote; it must throw.
  CsvReader(std::string_view text, std::function<void(const CsvFault&)> fail);

  /// Whether there was another record; `record` holds it then.
  bool next(CsvRecord& record);

 private:
  [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
  [[nodiscard]] bool atLineEnd() const {
    return atEnd() || text_[at_] == '\n' || text_[at_] == '\r';
  }
  [[nodiscard]] bool atFieldEnd() const { return atLineEnd() || text_[at_] == ','; }
  void skipBlanks();
  void takeLineEnd();
  std::string takeField(std::size_t number);
  std::string takeQuoted(std::size_t number);

  std::string_view text_;
  std::function<void(const CsvFault&)> fail_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
};

}  // namespace orlftool
