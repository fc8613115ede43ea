/// The handlers that `orlf link` tries out, as a text file lists them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct LinkHandler {
  std::string prefix;
  bool accepts = false;
};

/// Reads a handler from each line, "accept PREFIX" or "decline PREFIX", in the order in which they
/// are registered. A prefix may hold blanks, but none at its ends. Empty lines and those that begin
/// with "#" are passed over. Throws JobFailure "name:line: expected ..., got ..." for other lines.
[[nodiscard]] std::vector<LinkHandler> parseLinkHandlers(std::string_view text,
                                                         const std::string& name);
/// The same from a file; throws for a file that cannot be read, too.
[[nodiscard]] std::vector<LinkHandler> readLinkHandlers(const std::string& path);

}  // namespace orlftool
