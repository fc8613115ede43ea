// How decimal behaviours are archived.

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>

#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>
#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/Id.h>

#include <string_view>

namespace ORLFoundation {
namespace {

// Part of stored archives: they never change.
constexpr std::string_view kRoundingModeKey = "roundingMode";
constexpr std::string_view kDecimalScaleKey = "decimalScale";
constexpr std::string_view kExactnessBehaviorKey = "exactnessBehavior";
constexpr std::string_view kOverflowBehaviorKey = "overflowBehavior";
constexpr std::string_view kUnderflowBehaviorKey = "underflowBehavior";
constexpr std::string_view kDivideByZeroBehaviorKey = "divideByZeroBehavior";

ORLFDecimalNumberHandler::Fields decodeFields(NSCoder& coder) {
  return {.roundingMode = static_cast<NSRoundingMode>(coder.decodeInteger(kRoundingModeKey)),
          .scale = static_cast<std::int16_t>(coder.decodeInteger(kDecimalScaleKey)),
          .exactnessBehavior = coder.decodeInt32(kExactnessBehaviorKey),
          .overflowBehavior = coder.decodeInt32(kOverflowBehaviorKey),
          .underflowBehavior = coder.decodeInt32(kUnderflowBehaviorKey),
          .divideByZeroBehavior = coder.decodeInt32(kDivideByZeroBehaviorKey)};
}

const NSCodingClass& handlerClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDecimalNumberHandler>("ORLFDecimalNumberHandler");
  return record;
}

const NSCodingClass& mutableHandlerClass() {
  static const NSCodingClass& record = NSCodingClass::define<ORLFMutableDecimalNumberHandler>(
      "ORLFMutableDecimalNumberHandler", &handlerClass());
  return record;
}

}  // namespace

const NSCodingClass& ORLFDecimalNumberHandler::codingClass() {
  // Whoever allows handlers also reads mutable ones.
  static_cast<void>(mutableHandlerClass());
  return handlerClass();
}

const NSCodingClass& ORLFMutableDecimalNumberHandler::codingClass() {
  return mutableHandlerClass();
}

void ORLFDecimalNumberHandler::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInteger(static_cast<NSInteger>(fields_.roundingMode), kRoundingModeKey);
  coder.encodeInteger(fields_.scale, kDecimalScaleKey);
  coder.encodeInt32(fields_.exactnessBehavior, kExactnessBehaviorKey);
  coder.encodeInt32(fields_.overflowBehavior, kOverflowBehaviorKey);
  coder.encodeInt32(fields_.underflowBehavior, kUnderflowBehaviorKey);
  coder.encodeInt32(fields_.divideByZeroBehavior, kDivideByZeroBehaviorKey);
}

std::shared_ptr<ORLFDecimalNumberHandler> ORLFDecimalNumberHandler::initWithCoder(NSCoder& coder) {
  return std::make_shared<ORLFDecimalNumberHandler>(decodeFields(coder));
}

std::shared_ptr<ORLFMutableDecimalNumberHandler> ORLFMutableDecimalNumberHandler::initWithCoder(
    NSCoder& coder) {
  return std::make_shared<ORLFMutableDecimalNumberHandler>(decodeFields(coder));
}

}  // namespace ORLFoundation
