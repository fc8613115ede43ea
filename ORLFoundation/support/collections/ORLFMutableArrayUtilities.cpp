
#include <ORLFoundation/support/collections/ORLFMutableArrayUtilities.h>

#include <ORLFoundation/platform/object/NSIndexSet.h>

#include <vector>

namespace ORLFoundation {

void orlfFilterArrayUsingBlock(NSMutableArray& array, const std::function<bool(const id&)>& block) {
  if (!block) return;
  NSMutableIndexSet refused;
  // The members of this moment: the block may look at the array while it is asked.
  const std::vector<id> members = array.members();
  for (std::size_t index = 0; index < members.size(); ++index)
    if (!block(members[index])) refused.addIndex(index);
  array.removeObjectsAtIndexes(refused);
}

void orlfMoveObjectAtIndex(NSMutableArray& array, NSUInteger index, NSUInteger toIndex) {
  // `NSNotFound` is not below any count.
  if (index >= array.count() || toIndex >= array.count() || index == toIndex) return;
  const id object = array.objectAtIndex(index);
  const bool movesDown = toIndex < index;
  array.insertObject(object, movesDown ? toIndex : toIndex + 1);
  array.removeObjectAtIndex(movesDown ? index + 1 : index);
}

void orlfMoveObject(NSMutableArray& array, const id& object, NSUInteger toIndex) {
  orlfMoveObjectAtIndex(array, array.indexOfObject(object), toIndex);
}

void orlfMoveObjectIdenticalTo(NSMutableArray& array, const id& object, NSUInteger toIndex) {
  orlfMoveObjectAtIndex(array, array.indexOfObjectIdenticalTo(object), toIndex);
}

}  // namespace ORLFoundation
