/// The format that predicates on a text are made from.
#pragma once

#include <string>
#include <string_view>

namespace ORLFoundation::internal::strings {

/// "%K ==[cd] %@"; without either flag there are no brackets.
[[nodiscard]] std::string stringPredicateFormat(std::string_view comparisonOperator,
                                                bool caseInsensitive, bool diacriticInsensitive);

}  // namespace ORLFoundation::internal::strings
