

#include <ORLFoundation/platform/image/CGColor.h>

#include <functional>

namespace ORLFoundation {

CGColorRef CGColor::colorWithGray(double gray, double alpha) {
  return std::make_shared<CGColor>(std::vector<double>{gray, alpha});
}

CGColorRef CGColor::colorWithRed(double red, double green, double blue, double alpha) {
  return std::make_shared<CGColor>(std::vector<double>{red, green, blue, alpha});
}

bool CGColor::isEqual(const NSObject* other) const {
  const auto* color = dynamic_cast<const CGColor*>(other);
  return this == other || (color && color->components_ == components_);
}

NSUInteger CGColor::hash() const {
  NSUInteger hash = components_.size();
  // Adding zero turns -0 into 0, which equals it.
  for (const double component : components_)
    hash = hash * 31 + std::hash<double>{}(component + 0.0);
  return hash;
}

}  // namespace ORLFoundation
