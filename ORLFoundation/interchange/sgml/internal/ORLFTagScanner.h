/// A place in a text of tags, and what is known of its tags.
#pragma once

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

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
  [[nodiscard]] std::size_t place() const noexcept { return at_; }
  /// What has been passed since a place.
  [[nodiscard]] std::string_view passedSince(std::size_t place) const noexcept {
    return text_.substr(place, at_ - place);
  }
  /// Passes over white space and line ends.
  void skipBlanks() {
    const bool standsBeforeOther = !isAtEnd() && text_[at_] > ' ' && base::isASCII(text_[at_]);
    if (!standsBeforeOther) passBlanks();
  }
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
  /// Passes over an end tag that stands here, told with its marks.
  void scanEndTag(std::string_view tag) {
    if (at_ + 1 < text_.size() && text_[at_ + 1] == '/') scan(tag);
  }
  /// Passes over a name that stands here with a > behind it.
  bool scanWholeName(std::string_view name) {
    const std::size_t end = at_ + name.size();
    const bool isHere =
        end < text_.size() && text_[end] == '>' && text_.substr(at_, name.size()) == name;
    if (isHere) at_ = end;
    return isHere;
  }
  /// What stands before the next such character, or before the end.
  std::string_view scanUpTo(char c) {
    if (at_ < text_.size() && text_[at_] == c) return {};
    return take(std::min(text_.find(c, at_), text_.size()));
  }
  /// What stands before the next white space, line end or >, or before the end.
  std::string_view scanUpToEndOfName();

 private:
  void passBlanks();
  std::string_view take(std::size_t end) {
    const std::string_view taken = text_.substr(at_, end - at_);
    at_ = end;
    return taken;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

/// Something for each name of tags. Texts repeat their tags in the same order: the name that came
/// next last time is tried before any other is read and looked for.
template <class Value>
class ORLFTagTable {
 public:
  /// Passes over the name of a tag, which is empty where none stands, and gives what it has: nil
  /// for a name that was not added. What is given stays where it is.
  Value* scanName(ORLFTagScanner& scanner, std::string_view& name) {
    Entry* const next = last_ != nullptr ? last_->next : nullptr;
    if (next != nullptr && scanner.scanWholeName(next->name)) {
      last_ = next;
      name = next->name;
      return &next->value;
    }
    name = scanner.scanUpToEndOfName();
    const auto found = entries_.find(name);
    if (found == entries_.end()) return nullptr;
    Entry* const entry = &found->second;
    if (last_ != nullptr) last_->next = entry;
    last_ = entry;
    return &entry->value;
  }
  /// Adds a name that is not here, whose text must live on.
  void add(std::string_view name, Value value) {
    entries_.emplace(name, Entry{.name = name, .value = std::move(value)});
  }
  template <class Use>
  void forEach(Use use) const {
    for (const auto& [name, entry] : entries_) use(name, entry.value);
  }

 private:
  struct Entry {
    std::string_view name;
    Value value;
    Entry* next = nullptr;
  };
  std::unordered_map<std::string_view, Entry> entries_;
  Entry* last_ = nullptr;
};

}  // namespace ORLFoundation::internal::sgml
