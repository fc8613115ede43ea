/// The closed word classes of English.
#pragma once

#include <string_view>

namespace ORLFoundation::internal::language {

/// The tag of a conjunction, particle or preposition, in any mixture of cases; NLTagOtherWord for
/// every other word.
[[nodiscard]] std::string_view classOfEnglishWord(std::string_view word) noexcept;

}  // namespace ORLFoundation::internal::language
