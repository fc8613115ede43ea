#include <ORLFoundation/platform/xml/internal/QuotedLineEnds.h>

namespace ORLFoundation::internal::xml {

std::string_view QuotedLineEnds::told(std::string_view piece, bool follows) {
  if (isOpen_ && follows && piece.starts_with('\n')) piece.remove_prefix(1);
  isOpen_ = piece.ends_with('\r');
  if (piece.find('\r') == piece.npos) return piece;
  told_.clear();
  char before = 0;
  for (const char c : piece) {
    if (c != '\n' || before != '\r') told_ += c == '\r' ? '\n' : c;
    before = c;
  }
  return told_;
}

}  // namespace ORLFoundation::internal::xml
