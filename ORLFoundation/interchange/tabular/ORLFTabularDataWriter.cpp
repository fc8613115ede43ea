#include <ORLFoundation/interchange/tabular/ORLFTabularDataWriter.h>

namespace ORLFoundation {
namespace {

constexpr std::string_view kMark = "\"";

std::string wrapped(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 2);
  return result.append(kMark).append(text).append(kMark);
}

std::string withDoubledMarks(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 8);
  for (const char c : text) result.append(c == '"' ? 2 : 1, c);
  return result;
}

}  // namespace

std::string ORLFTabularDataWriter::encodeValue(std::optional<std::string_view> value) const {
  const std::string_view plain = value.value_or("");
  std::string result(plain);
  if (plain.find('"') != plain.npos) {
    result = wrapped(withDoubledMarks(plain));
  } else if (plain.find('\t') != plain.npos) {
    result = wrapped(plain);
  }
  const bool splits = separatesByComma() && plain.find(',') != plain.npos;
  return splits ? wrapped(result) : result;
}

void ORLFTabularDataWriter::writeColumnValue(std::optional<std::string_view> value,
                                             std::uint64_t span) {
  if (span == 0) return;
  std::string& written = text();
  if (hasPrecedingValue_) written += delimiter();
  written += encodeValue(value);
  hasPrecedingValue_ = true;
  for (std::uint64_t column = 1; column < span; ++column) {
    written += delimiter();
    written += "\"\"";
  }
}

void ORLFTabularDataWriter::writeNewRow(std::uint64_t count) {
  if (count == 0) return;
  text().append(count, '\n');
  hasPrecedingValue_ = false;
}

std::string& ORLFTabularDataWriter::text() { return string_ ? *string_ : string_.emplace(); }

}  // namespace ORLFoundation
