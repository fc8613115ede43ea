
#include <ORLFoundation/decimal/ORLFNegateDecimalNumberTransformer.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/object/Id.h>

#include <memory>

namespace ORLFoundation {

bool ORLFNegateDecimalNumberTransformer::initialize() {
  static const bool registered = [] {
    NSValueTransformer::setValueTransformer(std::make_shared<ORLFNegateDecimalNumberTransformer>(),
                                            "ORLFNegateDecimalNumberTransformer");
    return true;
  }();
  return registered;
}

id ORLFNegateDecimalNumberTransformer::transformedValue(const id& value) const {
  const auto number = value.as<NSDecimalNumber>();
  if (!number) return nullptr;
  return orlfDecimalNumberByNegatingNumber(*number);
}

id ORLFNegateDecimalNumberTransformer::reverseTransformedValue(const id& value) const {
  return transformedValue(value);
}

}  // namespace ORLFoundation
