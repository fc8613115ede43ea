/// The two kinds of patterns that a predicate fits to a whole text, under bits of
/// NSStringCompareOptions.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string_view>

namespace ORLFoundation::internal::predicate {

/// ? stands for one character, * for any number of them, a backslash takes the next one as it is.
[[nodiscard]] bool fitsWildcards(std::string_view text, std::string_view pattern,
                                 NSUInteger options);
/// A regular expression. Raises `NSInvalidArgumentException` for one that cannot be read or takes
/// too much time or memory on this text.
[[nodiscard]] bool fitsExpression(std::string_view text, std::string_view pattern,
                                  NSUInteger options);

}  // namespace ORLFoundation::internal::predicate
