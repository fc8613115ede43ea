/// What arrays, dictionaries and sets have in common. A collection must not hold itself, directly
/// or through others: its description stops at a depth of 100, its equality does not.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <string>

namespace ORLFoundation {

class NSCollection : public NSObject {
 public:
  /// `count`
  [[nodiscard]] virtual NSUInteger count() const noexcept = 0;
  /// `descriptionWithLocale:indent:`  The description inside `indent` outer collections: four
  /// spaces a level before each line.
  [[nodiscard]] virtual std::string descriptionWithIndent(NSUInteger indent) const = 0;
  [[nodiscard]] std::string description() const final { return descriptionWithIndent(0); }
  /// Whether all members fit a property list.
  [[nodiscard]] virtual bool isPropertyList() const = 0;
};

}  // namespace ORLFoundation
