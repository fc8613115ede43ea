/// Texts without what stands at their ends. Broken bytes stand for U+FFFD.
///
///     stringByTrimmingCharactersInSet(" 3/4 \n",
///                                     *NSCharacterSet::whitespaceAndNewlineCharacterSet());  //
///                                     "3/4"
#pragma once

#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <string_view>

namespace ORLFoundation {

/// `stringByTrimmingCharactersInSet:`  The part of the text from its first character that is no
/// member to its last; a view that lives as long as the text does.
[[nodiscard]] std::string_view stringByTrimmingCharactersInSet(std::string_view text,
                                                               const NSCharacterSet& set) noexcept;

}  // namespace ORLFoundation
