/// Names as messages show them: a file may hold names of any length, nested as deep as it likes,
/// and as many faults.
#pragma once

#include <string>
#include <string_view>

namespace ORLFoundation {
class ORLFProcessStep;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::definition {

/// A name of at most so many bytes as it is, the beginning of a longer one and "...".
[[nodiscard]] std::string shortened(std::string_view name, std::size_t most = 200);
/// The same in quotes.
[[nodiscard]] std::string quotedName(std::string_view name);
/// The full identifier of a step in quotes; of a long one, "..." and its end.
[[nodiscard]] std::string quotedFullName(const ORLFProcessStep& step);

}  // namespace ORLFoundation::internal::definition
