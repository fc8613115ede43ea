/// Texts from outside in messages and on terminals, and what a message about a file shows: where,
/// what was expected there, and what stood there.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// A text of a file as a message shows it: at most 40 characters, in quotes, without line ends and
/// broken bytes.
[[nodiscard]] std::string quotedForMessage(std::string_view text);
/// A message without line ends and other control characters, whatever it quotes.
[[nodiscard]] std::string oneLine(std::string_view text);
/// The inside of a JSON text with its last control characters escaped too, those of which JSON
/// itself says nothing: terminals obey them.
[[nodiscard]] std::string withoutControls(std::string_view json);
/// "A", "A and B", "A, B and C".
[[nodiscard]] std::string joinedWithAnd(const std::vector<std::string>& words);
/// Throws JobFailure "name:line: field: expected ..., got ..."; an empty field is left out.
[[noreturn]] void failAtField(const std::string& name, std::size_t line, const std::string& field,
                              std::string_view expected, std::string_view got);

}  // namespace orlftool
