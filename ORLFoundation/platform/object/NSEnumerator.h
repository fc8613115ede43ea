/// Walks the members of a collection, one at a time or in batches.
///
///     const auto members = set->objectEnumerator();
///     while (const id member = members->nextObject()) use(member);
///
///     NSFastEnumerationState state;
///     std::array<id, 16> batch;
///     while (const NSUInteger count = set->countByEnumeratingWithState(state, batch))
///       for (const id& member : std::span(batch).first(count)) use(member);
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation {

class NSEnumerator : public NSObject {
 public:
  /// Walks a list of its own.
  [[nodiscard]] static std::shared_ptr<NSEnumerator> enumeratorWithObjects(std::vector<id> objects);

  /// `nextObject`  nil at the end, and from then on.
  [[nodiscard]] virtual id nextObject() = 0;
  /// `allObjects`  Those that were not walked yet; none are left then.
  [[nodiscard]] virtual std::shared_ptr<NSArray> allObjects();

  [[nodiscard]] std::string className() const override { return "NSEnumerator"; }
};

/// Where a walk in batches stands; a new one begins at the first member.
struct NSFastEnumerationState {
  std::size_t position = 0;
  /// The collection's count of changes at the first call.
  std::optional<std::size_t> mutations;

  /// For collections: raises `NSGenericException` when the count of changes is not that of the
  /// first call.
  void requireUnchanged(const NSObject& collection, std::size_t mutationsNow);
};

}  // namespace ORLFoundation
