/// Line ends in CDATA, which libxml2 hands over as they were written.
#pragma once

#include <string>
#include <string_view>

namespace ORLFoundation::internal::xml {

/// Makes each line end a line feed, in a section that comes in pieces too.
class QuotedLineEnds {
 public:
  /// The piece with line feeds, valid until the next one. `follows` says whether it goes on right
  /// behind the piece before.
  [[nodiscard]] std::string_view told(std::string_view piece, bool follows);
  /// Whether a line feed at the beginning of a next piece belongs to the end of the last one.
  [[nodiscard]] bool isOpen() const noexcept { return isOpen_; }

 private:
  std::string told_;
  bool isOpen_ = false;
};

}  // namespace ORLFoundation::internal::xml
