
#include <ORLFoundation/support/collections/ORLFArrayUtilities.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kMostNumbers = NSUInteger{1} << 32;

/// The members of this moment: a block may change a mutable array.
std::vector<id> snapshotOf(const NSArray& array) { return array.members(); }

template <class Keep>
std::shared_ptr<NSArray> membersThat(const NSArray& array, Keep&& keep) {
  std::vector<id> kept = snapshotOf(array);
  std::erase_if(kept, [&keep](const id& member) { return !keep(member); });
  return std::make_shared<NSArray>(std::move(kept));
}

}  // namespace

void orlfEnumerateObjectPairsUsingBlock(
    const NSArray& array,
    const std::function<void(const id&, const id&, NSUInteger, bool&)>& block) {
  const std::vector<id> members = snapshotOf(array);
  bool stop = false;
  for (std::size_t index = 1; index < members.size() && !stop; ++index)
    block(members[index - 1], members[index], index - 1, stop);
}

std::shared_ptr<NSIndexSet> insertionIndexesOfSortedObjects(const NSArray& array,
                                                            const NSArray& sortedObjects,
                                                            const NSComparator& usingComparator) {
  const std::vector<id> members = snapshotOf(array);
  const std::vector<id> objects = snapshotOf(sortedObjects);
  const auto indexes = std::make_shared<NSMutableIndexSet>();
  std::size_t next = 0;
  for (std::size_t index = 0; index < members.size(); ++index) {
    while (next < objects.size() &&
           usingComparator(objects[next], members[index]) == NSOrderedAscending)
      indexes->addIndex(index + next++);
    if (next == objects.size()) break;
  }
  indexes->addIndexesInRange({members.size() + next, objects.size() - next});
  return copyOf<NSIndexSet>(indexes);
}

std::shared_ptr<NSArray> orlfFilteredArrayUsingBlock(const NSArray& array,
                                                     const std::function<bool(const id&)>& block) {
  return membersThat(array, [&block](const id& member) { return !block || block(member); });
}

std::shared_ptr<NSArray> orlfArrayByRemovingObject(const std::shared_ptr<NSArray>& array,
                                                   const id& object) {
  if (object.isNil()) return array;
  return membersThat(*array, [&object](const id& member) { return member != object; });
}

std::shared_ptr<NSArray> orlfArrayByRemovingObjectsFromArray(
    const std::shared_ptr<NSArray>& array, const std::shared_ptr<NSArray>& objectsFromArray) {
  if (!objectsFromArray || objectsFromArray->count() == 0) return array;
  return membersThat(*array, [&objectsFromArray](const id& member) {
    return !objectsFromArray->containsObject(member);
  });
}

std::shared_ptr<NSArray> orlfArrayByRemovingFirstObject(const std::shared_ptr<NSArray>& array) {
  return orlfArrayByRemovingObject(array, array->firstObject());
}

std::shared_ptr<NSArray> orlfArrayByRemovingLastObject(const std::shared_ptr<NSArray>& array) {
  return orlfArrayByRemovingObject(array, array->lastObject());
}

std::shared_ptr<NSIndexSet> orlfIndexSet(const NSArray& array) {
  const auto indexes = std::make_shared<NSMutableIndexSet>();
  for (const id& member : array) {
    const auto* number = member.get<NSNumber>();
    if (number == nullptr)
      throw NSException(NSInvalidArgumentException, "Element in NSArray not of type NSNumber");
    indexes->addIndex(number->unsignedIntegerValue());
  }
  return copyOf<NSIndexSet>(indexes);
}

std::shared_ptr<NSArray> orlfArrayWithNumbersInRange(NSRange range) {
  if (range.length > kMostNumbers || range.location > NSUIntegerMax - range.length)
    throw NSException(NSRangeException, "Range {" + std::to_string(range.location) + ", " +
                                            std::to_string(range.length) +
                                            "} has too many numbers");
  std::vector<id> numbers;
  numbers.reserve(range.length);
  for (NSUInteger number = range.location; number < NSMaxRange(range); ++number)
    numbers.emplace_back(number);
  return std::make_shared<NSArray>(std::move(numbers));
}

}  // namespace ORLFoundation
