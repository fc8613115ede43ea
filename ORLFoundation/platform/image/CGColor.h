/// A color: its components between 0 and 1, the last of them the opacity. Two components are gray
/// and alpha, four are red, green, blue and alpha; other counts belong to color spaces that are
/// only carried along.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

class CGColor final : public NSObject {
 public:
  /// `CGColorCreate`  Takes components of any count and value.
  explicit CGColor(std::vector<double> components) : components_(std::move(components)) {}
  /// `CGColorCreateGenericGray`
  [[nodiscard]] static std::shared_ptr<const CGColor> colorWithGray(double gray, double alpha);
  /// `CGColorCreateGenericRGB`
  [[nodiscard]] static std::shared_ptr<const CGColor> colorWithRed(double red, double green,
                                                                   double blue, double alpha);

  /// `CGColorGetComponents`
  [[nodiscard]] const std::vector<double>& components() const noexcept { return components_; }

  [[nodiscard]] std::string className() const override { return "CGColor"; }
  /// Equal components.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<CGColor>(components_); });
  }

 private:
  const std::vector<double> components_;
};

using CGColorRef = std::shared_ptr<const CGColor>;

}  // namespace ORLFoundation
