#include "progress/progress_streams.h"

#include <utility>

namespace orlftool {

LineStreamBuffer::~LineStreamBuffer() {
  if (!line_.empty()) print_(line_ + "\n");
}

LineStreamBuffer::int_type LineStreamBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char one = traits_type::to_char_type(c);
  xsputn(&one, 1);
  return c;
}

std::streamsize LineStreamBuffer::xsputn(const char* text, std::streamsize count) {
  const std::lock_guard guard(lock_);
  line_.append(text, static_cast<std::size_t>(count));
  const std::size_t end = line_.rfind('\n');
  if (end != std::string::npos) {
    print_(std::string_view(line_).substr(0, end + 1));
    line_.erase(0, end + 1);
  }
  return count;
}

void TappedStreamBuffer::begin() {
  if (const auto first = std::exchange(first_, nullptr)) first();
}

TappedStreamBuffer::int_type TappedStreamBuffer::overflow(int_type c) {
  begin();
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  return to_.sputc(traits_type::to_char_type(c));
}

std::streamsize TappedStreamBuffer::xsputn(const char* text, std::streamsize count) {
  begin();
  return to_.sputn(text, count);
}

}  // namespace orlftool
