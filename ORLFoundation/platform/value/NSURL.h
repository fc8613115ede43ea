/// The address of a resource: its text, cut once into scheme, host, path, query and fragment.
///
///     auto url = NSURL::URLWithString("https://example.com:8443/a%20b?x=1#top");
///     url->path();   // "/a b"
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSURL {
 public:
  /// `URLWithString:`  nil for an empty text, for control characters, spaces and the signs that an
  /// address must escape, for a percent sign without two hex digits, and for a port that is no
  /// number.
  [[nodiscard]] static std::optional<NSURL> URLWithString(std::string_view text);
  /// `fileURLWithPath:`  The path's bytes are escaped where an address needs it; a relative path
  /// stays relative to the root.
  [[nodiscard]] static NSURL fileURLWithPath(std::string_view path);

  /// `absoluteString`  The text as it was given.
  [[nodiscard]] const std::string& absoluteString() const noexcept { return text_; }
  /// nil where the address has no such part. Texts are given without the signs around them; `path`
  /// and `host` have their escapes resolved, `query` and `fragment` keep theirs.
  [[nodiscard]] std::optional<std::string> scheme() const;
  [[nodiscard]] std::optional<std::string> host() const;
  [[nodiscard]] std::optional<NSInteger> port() const;
  [[nodiscard]] std::string path() const;
  [[nodiscard]] std::optional<std::string> query() const;
  [[nodiscard]] std::optional<std::string> fragment() const;
  /// The path as it stands in the address.
  [[nodiscard]] std::string_view percentEncodedPath() const noexcept;
  /// `lastPathComponent`  "" for an empty path, "/" for the root; a slash at the end is passed
  /// over.
  [[nodiscard]] std::string lastPathComponent() const;
  /// `pathExtension`  What follows the last point of the last component; "" when there is none.
  [[nodiscard]] std::string pathExtension() const;
  [[nodiscard]] bool isFileURL() const;

  /// Equal texts; no part is folded in case.
  friend bool operator==(const NSURL& left, const NSURL& right) noexcept {
    return left.text_ == right.text_;
  }
  [[nodiscard]] NSUInteger hash() const noexcept { return std::hash<std::string>{}(text_); }
  /// The text.
  [[nodiscard]] const std::string& description() const noexcept { return text_; }

 private:
  /// A part of the text; `present` tells an empty part from none.
  struct Part {
    std::size_t begin = 0;
    std::size_t length = 0;
    bool present = false;
  };

  explicit NSURL(std::string text) : text_(std::move(text)) {}
  [[nodiscard]] bool cutParts();
  [[nodiscard]] bool cutAuthority(std::size_t begin, std::size_t end);
  [[nodiscard]] std::string_view text(Part part) const noexcept;
  [[nodiscard]] std::optional<std::string> optionalText(Part part) const;

  std::string text_;
  Part scheme_, host_, port_, path_, query_, fragment_;
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSURL> {
  std::size_t operator()(const ORLFoundation::NSURL& url) const noexcept { return url.hash(); }
};
