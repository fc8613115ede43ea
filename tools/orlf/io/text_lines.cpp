#include "io/text_lines.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "io/text_input.h"

namespace orlftool {

std::vector<std::string> linesOfText(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(text.size(), 1));
  }
  return lines;
}

std::vector<std::string> textsOfWords(const std::vector<std::string>& words) {
  std::vector<std::string> texts;
  for (const std::string& word : words) {
    if (word != "-") {
      texts.push_back(word);
      continue;
    }
    for (std::string& line : linesOfText(readWholeText(word, std::nullopt)))
      texts.push_back(std::move(line));
  }
  return texts;
}

}  // namespace orlftool
