#include "io/csv_records.h"

#include <utility>

#include "cli/message_text.h"

namespace orlftool {

CsvReader::CsvReader(std::string_view text, std::function<void(const CsvFault&)> fail)
    : text_(text), fail_(std::move(fail)) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
}

void CsvReader::skipBlanks() {
  while (!atEnd() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
}

void CsvReader::takeLineEnd() {
  if (text_.substr(at_).starts_with("\r\n")) ++at_;
  ++at_;
  ++line_;
}

bool CsvReader::next(CsvRecord& record) {
  for (skipBlanks(); !atEnd() && atLineEnd(); skipBlanks()) takeLineEnd();
  if (atEnd()) return false;
  record.clear();
  for (;;) {
    const std::size_t line = line_;
    record.push_back({takeField(record.size()), line});
    if (atLineEnd()) break;
    ++at_;  // the comma
  }
  if (!atEnd()) takeLineEnd();
  return true;
}

std::string CsvReader::takeField(std::size_t number) {
  skipBlanks();
  if (!atEnd() && text_[at_] == '"') return takeQuoted(number);
  const std::size_t begin = at_;
  while (!atFieldEnd()) ++at_;
  std::string_view field = text_.substr(begin, at_ - begin);
  while (field.ends_with(' ') || field.ends_with('\t')) field.remove_suffix(1);
  return std::string(field);
}

std::string CsvReader::takeQuoted(std::size_t number) {
  const std::size_t line = line_;
  std::string field;
  ++at_;
  for (;;) {
    if (atEnd()) {
      fail_({line, number, "a closing quote", "the end of the file"});
      return field;
    }
    if (text_[at_] == '"') {
      ++at_;
      if (atEnd() || text_[at_] != '"') break;
    }
    if (text_[at_] == '\n' || (text_[at_] == '\r' && !text_.substr(at_).starts_with("\r\n")))
      ++line_;
    field += text_[at_++];
  }
  skipBlanks();
  if (!atFieldEnd()) {
    const std::size_t begin = at_;
    while (!atFieldEnd()) ++at_;
    fail_({line_, number, "a comma or the end of the line after the closing quote",
           quotedForMessage(text_.substr(begin, at_ - begin))});
  }
  return field;
}

}  // namespace orlftool
