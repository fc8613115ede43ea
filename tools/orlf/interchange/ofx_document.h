/// Statements of banks in SGML, or in XML of sorts, turned into XML in UTF-8.
#pragma once

#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct OfxDocument {
  std::string xml;
  /// What was missing or wrong and how it was taken, for people.
  std::vector<std::string> notes;
};

struct OfxOptions {
  /// Nil for that of the header, the declaration or the bytes themselves.
  std::optional<ORLFoundation::NSStringEncoding> encoding = std::nullopt;
  bool isIndented = false;
};

/// Converts a document. The encoding is told by a byte order mark, else by the header's ENCODING
/// and CHARSET or the declaration; where its bytes do not fit that, they are read as UTF-8 or
/// Windows Latin 1. The result begins with a declaration of its own and, for OFX, with its header
/// as `<?OFX ...?>`. Throws JobFailure for bytes that do not fit a given encoding and for a text
/// without any tag; all else is converted and noted.
[[nodiscard]] OfxDocument convertOfx(std::string_view bytes, const std::string& name,
                                     const OfxOptions& options);

}  // namespace orlftool
