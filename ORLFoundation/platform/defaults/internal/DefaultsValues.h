/// How texts of the command line and of older files are read as other kinds of values, and what is
/// kept for them.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal {

/// `boolValue`  As `NSUserDefaults::boolForKey` tells.
[[nodiscard]] bool boolValueOfText(std::string_view text);
/// `doubleValue`  The decimal number at the text's beginning, after blanks; 0 when there is none.
[[nodiscard]] double doubleValueOfText(const std::string& text);

/// The value with no mutable collection in it.
[[nodiscard]] id immutableCopy(const id& value);

/// An address as it is kept, and back.
[[nodiscard]] id valueOfAddress(const NSURL& url);
[[nodiscard]] std::optional<NSURL> addressOfValue(const id& value);

}  // namespace ORLFoundation::internal
