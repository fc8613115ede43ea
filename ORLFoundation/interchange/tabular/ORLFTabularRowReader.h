/// Reads the rows of separated text: fields between separators, rows between line ends, either of
/// them taken as text between quotation marks.
///
///     orlfEnumerateTabularRows("day,amount\n3/1,\"1,000\"\n", ',',
///                              [](const ORLFTabularRow& row, bool&) {
///                                print(row.lineNumber, row.fields);  // 1 day amount, 2 3/1 1,000
///                              });
///
/// Marks may begin and end anywhere in a field and are left out of it; two of them inside marks are
/// one. White space behind a separator is left out, all other stays. A field that is empty at the
/// end of a row is dropped, and so is a row without fields.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace ORLFoundation {

/// One row. The fields are views that hold until the block returns.
struct ORLFTabularRow {
  std::span<const std::string_view> fields;
  /// The line of the text on which the row begins, from 1. CR LF ends one line.
  std::uint64_t lineNumber = 0;
  /// Whether the text ended between quotation marks: the last of its rows may have been cut off.
  bool endsInMarks = false;
};

/// Called with each row; setting `stop` ends the reading.
using ORLFTabularRowBlock = std::function<void(const ORLFTabularRow& row, bool& stop)>;

/// The separator that a text's first line asks for: a semicolon when it holds one, else a comma. A
/// tab is never chosen. White space and line ends before the first line are passed over.
[[nodiscard]] char orlfTabularSeparator(std::string_view text);

/// Reads all rows of a text. The separator is any character of ASCII but a quotation mark and a
/// line end; for those it raises `NSInvalidArgumentException`. Bytes are not checked: broken UTF-8
/// is passed through.
void orlfEnumerateTabularRows(std::string_view text, char separator,
                              const ORLFTabularRowBlock& usingBlock);

/// Fills the buffer with the next bytes of a text and tells how many; 0 at the end.
using ORLFTabularSource = std::function<std::size_t(std::span<char> buffer)>;

struct ORLFTabularLimits {
  /// The most bytes that a row, or what stands before the end of the first line, may have. Memory
  /// stays below five times as much and 80 bytes a field; rows of up to 4 KB need some megabytes.
  std::size_t longestRow = std::size_t{64} << 20;
  /// The most fields that a row may have.
  std::size_t mostFields = 1'000'000;
};

/// The code in `ORLFErrorDomain` of a row that has more bytes or fields than allowed.
inline constexpr NSInteger ORLFTabularLongRowError = 64;

/// The same over a source, in bounded memory; without a separator, the first line decides. false,
/// with an error that names the line, when a row has more than allowed; the rows before it have
/// been given. Each row is given as soon as the source has handed out its line end and a character
/// behind it. What the source or the block throws passes through.
bool orlfEnumerateTabularRowsOfSource(const ORLFTabularSource& source,
                                      std::optional<char> separator,
                                      const ORLFTabularRowBlock& usingBlock,
                                      const ORLFTabularLimits& limits = {},
                                      NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
