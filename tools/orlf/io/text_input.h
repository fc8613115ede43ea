/// Text files read from front to back as UTF-8, however long they are.
///
///     TextInput input("bank.csv", std::nullopt);
///     while (const std::size_t count = input.read(buffer)) use(buffer, count);
#pragma once

#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "io/byte_source.h"

namespace orlftool {

/// The names of encodings on the command line, for messages.
inline constexpr std::string_view kEncodingNames =
    "utf-8, utf-16, utf-16be, utf-16le, ascii, latin-1, windows-1252 or mac-roman";

/// The encoding of such a name, in either case; "iso-8859-1", "us-ascii", "cp1252" and "1252" are
/// names too. nil for others.
[[nodiscard]] std::optional<ORLFoundation::NSStringEncoding> encodingNamed(std::string_view name);
/// The encoding that the value of an option names; nil where it was not given. Throws UsageFailure.
[[nodiscard]] std::optional<ORLFoundation::NSStringEncoding> readEncodingOption(
    const std::optional<std::string>& name, std::string_view option = "--encoding");
[[nodiscard]] std::string_view nameOfEncoding(ORLFoundation::NSUInteger encoding);

class TextInput {
 public:
  /// The file at a path, standard input for "-". Without an encoding, a byte order mark tells UTF-8
  /// or UTF-16, and without a mark it is UTF-8. Throws JobFailure for a file that cannot be read
  /// and for a directory.
  TextInput(const std::string& path, std::optional<ORLFoundation::NSStringEncoding> encoding)
      : TextInput(openBytes(path), encoding) {}
  TextInput(ByteSource source, std::optional<ORLFoundation::NSStringEncoding> encoding);

  /// For messages: the path, or "standard input".
  [[nodiscard]] const std::string& name() const noexcept { return source_.name; }
  /// The file's length in bytes; nil for what is no plain file.
  [[nodiscard]] std::optional<std::uint64_t> size() const noexcept { return source_.size; }
  /// How many of its bytes were read.
  [[nodiscard]] std::uint64_t position() const noexcept { return position_; }

  /// Fills the buffer with the next bytes of the text and tells how many; 0 at the end. Throws
  /// JobFailure, with the line, at bytes that the encoding does not have.
  std::size_t read(std::span<char> buffer);

 private:
  void decodeMore();
  void readRaw();
  void detectEncoding();
  /// Bytes at the front of `raw_` that are whole characters, as far as lengths tell.
  [[nodiscard]] std::size_t wholeBytes() const;
  [[noreturn]] void failInside(std::string_view bytes) const;

  const ByteSource source_;
  std::optional<ORLFoundation::NSStringEncoding> encoding_;
  bool isTold_ = false;  // whether the encoding was given
  bool isAtEnd_ = false;
  std::uint64_t position_ = 0;
  std::uint64_t lines_ = 1;  // the line on which `raw_` begins
  char last_ = 0;            // the last byte before it
  std::string raw_;          // bytes that are not decoded yet
  std::string text_;         // decoded, from `given_` on not handed out yet
  std::size_t given_ = 0;
};

/// All of a file's text. Throws JobFailure like the reading of pieces, and above 64 MB.
[[nodiscard]] std::string readWholeText(const std::string& path,
                                        std::optional<ORLFoundation::NSStringEncoding> encoding);

/// The lines that a text ends: LF, CR LF and CR end one each. `before` is the byte before it.
[[nodiscard]] std::uint64_t lineEndsIn(std::string_view text, char before = 0);

}  // namespace orlftool
