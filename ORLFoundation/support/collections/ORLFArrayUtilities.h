/// Operations on arrays that platform arrays lack: neighbours in pairs, merging sorted lists,
/// copies without some members. Where nothing is to be taken away, the answer is the receiver
/// itself.
///
///     const auto rest = orlfArrayByRemovingFirstObject(steps);
///     orlfEnumerateObjectPairsUsingBlock(
///         *dates, [](const id& from, const id& to, NSUInteger, bool&) { show(from, to); });
#pragma once

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSIndexSet.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <functional>
#include <memory>

namespace ORLFoundation {

/// How one object stands to another.
using NSComparator = std::function<NSComparisonResult(const id& left, const id& right)>;

/// `orlfEnumerateObjectPairsUsingBlock:`  Calls the block for each object but the first with the
/// one before it, that one's index and the stop flag. Fewer than two objects make no pair.
void orlfEnumerateObjectPairsUsingBlock(
    const NSArray& array, const std::function<void(const id& previous, const id& object,
                                                   NSUInteger previousIndex, bool& stop)>& block);

/// `insertionIndexesOfSortedObjects:usingComparator:`  The indexes that the objects take when they
/// are merged into the receiver; both are sorted. An object that compares equal goes after the
/// receiver's.
[[nodiscard]] std::shared_ptr<NSIndexSet> insertionIndexesOfSortedObjects(
    const NSArray& array, const NSArray& sortedObjects, const NSComparator& usingComparator);

/// `orlfFilteredArrayUsingBlock:`  The objects for which the block answers true; all of them
/// without a block.
[[nodiscard]] std::shared_ptr<NSArray> orlfFilteredArrayUsingBlock(
    const NSArray& array, const std::function<bool(const id& object)>& block);

/// `orlfArrayByRemovingObject:`  A copy without any object that equals the one given; the receiver
/// for nil.
[[nodiscard]] std::shared_ptr<NSArray> orlfArrayByRemovingObject(
    const std::shared_ptr<NSArray>& array, const id& object);

/// `orlfArrayByRemovingObjectsFromArray:`  A copy without any object that equals one of those
/// given; the receiver when none is given.
[[nodiscard]] std::shared_ptr<NSArray> orlfArrayByRemovingObjectsFromArray(
    const std::shared_ptr<NSArray>& array, const std::shared_ptr<NSArray>& objectsFromArray);

/// `orlfArrayByRemovingFirstObject`  Without every object that equals the first one: a, b, a gives
/// b. Required so. The receiver when it is empty.
[[nodiscard]] std::shared_ptr<NSArray> orlfArrayByRemovingFirstObject(
    const std::shared_ptr<NSArray>& array);

/// `orlfArrayByRemovingLastObject`  Without every object that equals the last one.
[[nodiscard]] std::shared_ptr<NSArray> orlfArrayByRemovingLastObject(
    const std::shared_ptr<NSArray>& array);

/// `orlfIndexSet`  The unsigned values of the members. Raises `NSInvalidArgumentException` with
/// "Element in NSArray not of type NSNumber" for any other member, and `NSRangeException` for a
/// number that cannot be an index.
[[nodiscard]] std::shared_ptr<NSIndexSet> orlfIndexSet(const NSArray& array);

/// `orlfArrayWithNumbersInRange:`  The numbers from the start of the range, as many as it is long.
/// Raises `NSRangeException` for a range that ends beyond the largest number or that is longer than
/// 2^32.
[[nodiscard]] std::shared_ptr<NSArray> orlfArrayWithNumbersInRange(NSRange range);

}  // namespace ORLFoundation
