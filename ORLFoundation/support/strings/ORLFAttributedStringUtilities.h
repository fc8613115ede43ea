/// Attributes for the stretches of a text that have none of their own.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/text/NSAttributedString.h>
#include <ORLFoundation/platform/value/NSRange.h>

namespace ORLFoundation {

/// `orlfApplyMissingAttributes:range:`  For each key, the dictionary's value goes to the stretches
/// of the range that have no value for it; existing values stay. Raises `NSRangeException` for a
/// range beyond the end of the text, `NSInvalidArgumentException` for a key that is no text.
void orlfApplyMissingAttributes(NSMutableAttributedString& text, const NSDictionary& attributes,
                                NSRange range);
/// `orlfApplyMissingAttributes:`  Over the whole text.
void orlfApplyMissingAttributes(NSMutableAttributedString& text, const NSDictionary& attributes);

}  // namespace ORLFoundation
