
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

NSValue NSValue::valueWithNonretainedObject(const NSObject* object) {
  if (object == nullptr) return NSValue(Reference());
  return NSValue(Reference{object, const_cast<NSObject*>(object)->weak_from_this()});
}

std::shared_ptr<NSObject> NSValue::nonretainedObjectValue() const noexcept {
  const auto* reference = std::get_if<Reference>(&record_);
  return reference ? reference->object.lock() : nullptr;
}

NSUInteger NSValue::hash() const noexcept {
  return std::visit(
      [](const auto& record) {
        if constexpr (requires { record.address; })
          return NSUInteger{std::hash<const NSObject*>{}(record.address)};
        else
          return hashOf(record);
      },
      record_);
}

std::string NSValue::description() const {
  return std::visit(
      [](const auto& record) {
        if constexpr (requires { record.address; })
          return describe(record.address);
        else
          return describe(record);
      },
      record_);
}

}  // namespace ORLFoundation
