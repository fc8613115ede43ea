#include <ORLFoundation/platform/image/CGValues.h>

namespace ORLFoundation {

NSValue orlfValueWithCGPoint(CGPoint point) { return NSValue::valueWithPoint(point); }

CGPoint orlfCGPointValue(const NSValue& value) noexcept { return value.pointValue(); }

CGRect orlfCGRectValue(const NSValue& value) noexcept { return value.rectValue(); }

}  // namespace ORLFoundation
