/// Turns one value into another, and back where it can; found by name.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class id;

class NSValueTransformer : public NSObject {
 public:
  /// `setValueTransformer:forName:`  In place of one that has the name; nil removes it. Safe on any
  /// thread.
  static void setValueTransformer(std::shared_ptr<NSValueTransformer> transformer,
                                  std::string_view forName);
  /// `valueTransformerForName:`  nil for a name that nothing is registered under.
  [[nodiscard]] static std::shared_ptr<NSValueTransformer> valueTransformerForName(
      std::string_view name);

  /// `transformedValueClass`  The name of the class of results.
  [[nodiscard]] virtual std::string transformedValueClass() const = 0;
  /// `allowsReverseTransformation`  false unless a transformer says otherwise.
  [[nodiscard]] virtual bool allowsReverseTransformation() const;
  /// `transformedValue:`
  [[nodiscard]] virtual id transformedValue(const id& value) const = 0;
  /// `reverseTransformedValue:`  Raises `NSInvalidArgumentException` where there is no way back.
  [[nodiscard]] virtual id reverseTransformedValue(const id& value) const;

  [[nodiscard]] std::string className() const override { return "NSValueTransformer"; }
};

}  // namespace ORLFoundation
