/// Changes of mutable arrays in place: filtering, and moving one object to another index.
#pragma once

#include <ORLFoundation/platform/object/NSArray.h>

#include <functional>

namespace ORLFoundation {

/// `orlfFilterArrayUsingBlock:`  Removes the objects for which the block answers false. Without a
/// block the array stays as it is.
void orlfFilterArrayUsingBlock(NSMutableArray& array,
                               const std::function<bool(const id& object)>& block);

/// `orlfMoveObjectAtIndex:toIndex:`  Moves an object so that it has the index afterwards: 0 to 2 in
/// a, b, c gives b, c, a. Nothing when the indexes are equal, or when either is `NSNotFound` or not
/// below the count.
void orlfMoveObjectAtIndex(NSMutableArray& array, NSUInteger index, NSUInteger toIndex);

/// `orlfMoveObject:toIndex:`  The same for the first object that equals the one given.
void orlfMoveObject(NSMutableArray& array, const id& object, NSUInteger toIndex);

/// `orlfMoveObjectIdenticalTo:toIndex:`  The same for the object itself; plain values, which have
/// no identity, are found by equality.
void orlfMoveObjectIdenticalTo(NSMutableArray& array, const id& object, NSUInteger toIndex);

}  // namespace ORLFoundation
