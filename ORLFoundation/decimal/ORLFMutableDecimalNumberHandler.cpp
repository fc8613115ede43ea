#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>

namespace ORLFoundation {

void ORLFMutableDecimalNumberHandler::setRoundingMode(NSRoundingMode roundingMode) noexcept {
  fields_.roundingMode = roundingMode;
}
void ORLFMutableDecimalNumberHandler::setScale(std::int16_t scale) noexcept {
  fields_.scale = scale;
}
void ORLFMutableDecimalNumberHandler::setExactnessBehavior(std::int32_t behavior) noexcept {
  fields_.exactnessBehavior = behavior;
}
void ORLFMutableDecimalNumberHandler::setOverflowBehavior(std::int32_t behavior) noexcept {
  fields_.overflowBehavior = behavior;
}
void ORLFMutableDecimalNumberHandler::setUnderflowBehavior(std::int32_t behavior) noexcept {
  fields_.underflowBehavior = behavior;
}
void ORLFMutableDecimalNumberHandler::setDivideByZeroBehavior(std::int32_t behavior) noexcept {
  fields_.divideByZeroBehavior = behavior;
}

std::shared_ptr<NSObject> ORLFMutableDecimalNumberHandler::copy() {
  return std::make_shared<ORLFDecimalNumberHandler>(fields_);
}

}  // namespace ORLFoundation
