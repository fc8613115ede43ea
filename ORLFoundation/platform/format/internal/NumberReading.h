/// The number at the beginning of a text in UTF-16.
#pragma once

#include <ORLFoundation/platform/format/NSNumberText.h>
#include <ORLFoundation/platform/format/internal/NumberFormats.h>
#include <ORLFoundation/platform/object/NSNumber.h>

#include <optional>
#include <string_view>

namespace ORLFoundation::internal::format {

struct NumberReading {
  NSNumber number = 0;
  NSUInteger length = 0;  // of what was taken, in UTF-16 units
};

/// Of `range` of the text, which lies within it. nil when no number begins there; limits are not
/// looked at.
[[nodiscard]] std::optional<NumberReading> readNumber(const NumberFormats& formats,
                                                      NSNumberText& text, NSRange range);

/// The same by ICU alone, within the bounds.
[[nodiscard]] std::optional<NumberReading> readNumberByICU(const NumberFormats& formats,
                                                           NSNumberText& text, NSRange range);

/// A number of at most 18 ASCII digits that plainly ends there; nil for all that asks for ICU.
/// What it reads, ICU reads alike.
[[nodiscard]] std::optional<NumberReading> readPlainNumber(const PlainMarks& marks,
                                                           bool generatesDecimals,
                                                           std::u16string_view units) noexcept;

}  // namespace ORLFoundation::internal::format
