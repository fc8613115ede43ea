/// Objects archived and read back, for tests.
#pragma once

#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <gtest/gtest.h>

#include <memory>

namespace orlftest {

/// Archives an object and reads it back where that class is allowed; null where either fails, and
/// the running test too where it cannot be archived.
template <class Class, class Object>
std::shared_ptr<Class> archivedAndRead(const std::shared_ptr<Object>& object) {
  using namespace ORLFoundation;
  std::shared_ptr<const NSError> error;
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(object, true, &error);
  EXPECT_TRUE(data) << (error ? error->localizedDescription() : "no error");
  return data ? NSKeyedUnarchiver::unarchivedObjectOfClass<Class>(*data) : nullptr;
}

}  // namespace orlftest
