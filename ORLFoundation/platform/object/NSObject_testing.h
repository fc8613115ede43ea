/// What tests of classes that never change ask of their copies.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <gtest/gtest.h>

#include <memory>

namespace orlftest {

/// An object that no shared pointer owns copies to an equal one of its class, which is its own
/// copy.
inline void expectEqualCopyOfUnowned(ORLFoundation::NSObject& object) {
  const std::shared_ptr<ORLFoundation::NSObject> copy = object.copy();
  ASSERT_TRUE(copy);
  EXPECT_NE(copy.get(), &object);
  EXPECT_EQ(copy->className(), object.className());
  EXPECT_TRUE(copy->isEqual(&object)) << copy->description();
  EXPECT_EQ(copy->hash(), object.hash());
  EXPECT_EQ(copy->copy(), copy);
}

}  // namespace orlftest
