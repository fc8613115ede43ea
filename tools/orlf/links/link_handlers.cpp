#include "links/link_handlers.h"

#include <algorithm>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "io/input_file.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

LinkHandler parseLine(std::string_view line, const std::string& place) {
  const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
  const std::string_view word = line.substr(0, end);
  const std::string_view prefix = trimmed(line.substr(end));
  if ((word != "accept" && word != "decline") || prefix.empty())
    throw JobFailure(place + ": expected 'accept PREFIX' or 'decline PREFIX', got " +
                     quotedForMessage(line));
  return {std::string(prefix), word == "accept"};
}

}  // namespace

std::vector<LinkHandler> parseLinkHandlers(std::string_view text, const std::string& name) {
  std::vector<LinkHandler> handlers;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    handlers.push_back(parseLine(line, name + ":" + std::to_string(number)));
  }
  return handlers;
}

std::vector<LinkHandler> readLinkHandlers(const std::string& path) {
  return parseLinkHandlers(readInputFile(path, "a file of link handlers"), path);
}

}  // namespace orlftool
