/// Walks the members of a non-retaining collection.
#pragma once

#include <ORLFoundation/platform/object/NSEnumerator.h>

#include <memory>
#include <string>
#include <utility>

namespace ORLFoundation {

class ORLFNonretainingMutableCollectionEnumerator final : public NSEnumerator {
 public:
  /// Unwraps what the internal enumerator walks: values that refer to objects without owning them.
  explicit ORLFNonretainingMutableCollectionEnumerator(
      std::shared_ptr<NSEnumerator> internalEnumerator)
      : internalEnumerator_(std::move(internalEnumerator)) {}

  /// `nextObject`  Passes over objects that were destroyed since the walk began.
  [[nodiscard]] id nextObject() override;

  [[nodiscard]] std::string className() const override {
    return "ORLFNonretainingMutableCollectionEnumerator";
  }

 private:
  const std::shared_ptr<NSEnumerator> internalEnumerator_;
};

}  // namespace ORLFoundation
