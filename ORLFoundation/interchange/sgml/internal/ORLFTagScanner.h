/// A place in a text of tags.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ORLFoundation::internal::sgml {

/// Whether a name begins with a letter, a colon or an underscore.
[[nodiscard]] bool beginsName(std::string_view name);
/// Where the line breaks begin that a text ends with.
[[nodiscard]] std::size_t endWithoutLineBreaks(std::string_view text);

/// Skips nothing by itself.
class ORLFTagScanner {
 public:
  explicit ORLFTagScanner(std::string_view text) : text_(text) {}

  [[nodiscard]] bool isAtEnd() const noexcept { return at_ == text_.size(); }
  /// Passes over white space and line ends.
  void skipBlanks();
  /// Passes over a text that stands here.
  bool scan(std::string_view text) {
    const bool isHere = text_.substr(at_).starts_with(text);
    if (isHere) at_ += text.size();
    return isHere;
  }
  bool scan(char c) {
    const bool isHere = at_ < text_.size() && text_[at_] == c;
    if (isHere) ++at_;
    return isHere;
  }
  /// Passes over the end tag of a name, where that very tag stands here.
  bool scanEndTag(std::string_view name) {
    const std::string_view ahead = text_.substr(at_);
    const std::size_t length = name.size() + 3;
    if (!ahead.starts_with("</") || ahead.size() < length || ahead[length - 1] != '>' ||
        ahead.substr(2, name.size()) != name)
      return false;
    at_ += length;
    return true;
  }
  /// What stands before the next such character, or before the end.
  std::string_view scanUpTo(char c) { return take(std::min(text_.find(c, at_), text_.size())); }
  /// What stands before the next white space, line end or >, or before the end.
  std::string_view scanUpToEndOfName();

 private:
  std::string_view take(std::size_t end) {
    const std::string_view taken = text_.substr(at_, end - at_);
    at_ = end;
    return taken;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace ORLFoundation::internal::sgml
