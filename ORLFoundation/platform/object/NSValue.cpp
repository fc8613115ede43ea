
#include <ORLFoundation/platform/object/NSValue.h>

#include <ORLFoundation/platform/object/NSObject.h>

#include <cinttypes>
#include <cstdio>
#include <functional>

namespace ORLFoundation {
namespace {

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

std::string pair(double first, double second) {
  return "{" + number(first) + ", " + number(second) + "}";
}

std::string describe(NSRange range) {
  return "NSRange: {" + std::to_string(range.location) + ", " + std::to_string(range.length) + "}";
}
std::string describe(CGPoint point) { return "NSPoint: " + pair(point.x, point.y); }
std::string describe(CGRect rect) {
  return "NSRect: {" + pair(rect.origin.x, rect.origin.y) + ", " +
         pair(rect.size.width, rect.size.height) + "}";
}

NSUInteger mix(NSUInteger first, NSUInteger second) { return first * 31 + second; }
// Adding zero turns -0 into 0, which equals it.
NSUInteger hashOf(double value) { return std::hash<double>{}(value + 0.0); }
NSUInteger hashOf(NSRange range) { return mix(range.location, range.length); }
NSUInteger hashOf(CGPoint point) { return mix(hashOf(point.x), hashOf(point.y)); }
NSUInteger hashOf(CGRect rect) {
  return mix(hashOf(rect.origin), mix(hashOf(rect.size.width), hashOf(rect.size.height)));
}

std::string describe(const NSObject* object) {
  char text[48];
  std::snprintf(text, sizeof text, "<NSValue: 0x%" PRIxPTR ">",
                reinterpret_cast<std::uintptr_t>(object));
  return text;
}

}  // namespace

NSValue::NSValue(const NSObject* object) : kind_(Kind::Reference), address_(object) {
  if (object != nullptr) object_ = const_cast<NSObject*>(object)->weak_from_this();
}

NSValue NSValue::valueWithNonretainedObject(const NSObject* object) { return NSValue(object); }

std::shared_ptr<NSObject> NSValue::nonretainedObjectValue() const noexcept {
  return object_.lock();
}

NSUInteger NSValue::hash() const noexcept {
  switch (kind_) {
    case Kind::Range:
      return hashOf(range_);
    case Kind::Point:
      return hashOf(rect_.origin);
    case Kind::Rect:
      return hashOf(rect_);
    default:
      return std::hash<const NSObject*>{}(address_);
  }
}

std::string NSValue::description() const {
  switch (kind_) {
    case Kind::Range:
      return describe(range_);
    case Kind::Point:
      return describe(rect_.origin);
    case Kind::Rect:
      return describe(rect_);
    default:
      return describe(address_);
  }
}

bool operator==(const NSValue& left, const NSValue& right) noexcept {
  return left.kind_ == right.kind_ && left.range_ == right.range_ && left.rect_ == right.rect_ &&
         left.address_ == right.address_;
}

}  // namespace ORLFoundation
