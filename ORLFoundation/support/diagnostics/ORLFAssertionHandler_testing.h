/// What tests of failed assertions share.
#pragma once

#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <memory>

namespace orlftest {

/// The buttons of the alert.
inline constexpr ORLFoundation::NSInteger kQuit = 0;
inline constexpr ORLFoundation::NSInteger kContinue = 1;

inline std::shared_ptr<ORLFoundation::NSMutableDictionary> threadDictionary() {
  return ORLFoundation::NSThread::currentThread()->threadDictionary();
}

}  // namespace orlftest
