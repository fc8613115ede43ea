/// Points and rectangles of drawings as values, under the names that drawing code calls them by.
#pragma once

#include <ORLFoundation/platform/object/NSValue.h>
#include <ORLFoundation/platform/value/CGGeometry.h>

namespace ORLFoundation {

/// `orlfValueWithCGPoint:`
[[nodiscard]] NSValue orlfValueWithCGPoint(CGPoint point);
/// `orlfCGPointValue`  Zeros when the value holds another record, as in all three.
[[nodiscard]] CGPoint orlfCGPointValue(const NSValue& value) noexcept;
/// `orlfCGRectValue`
[[nodiscard]] CGRect orlfCGRectValue(const NSValue& value) noexcept;

}  // namespace ORLFoundation
