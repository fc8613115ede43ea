/// Texts of the command line, of which each stands for itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// The lines of a text without their ends; LF, CR LF and CR end one each. Empty lines are lines.
[[nodiscard]] std::vector<std::string> linesOfText(std::string_view text);
/// The words with "-" replaced by the lines of the standard input. Throws JobFailure where that
/// cannot be read.
[[nodiscard]] std::vector<std::string> textsOfWords(const std::vector<std::string>& words);

}  // namespace orlftool
