/// What keeps other writers of a store's file out: a file beside it, ".lock" behind its name. The
/// kernel frees it when its holder dies; it is no longer there when its store was removed.
///
///     const StoreLock lock(url, error);
///     if (!lock.isHeld()) return false;
#pragma once

#include <ORLFoundation/platform/files/FileCalls.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <string>

namespace ORLFoundation::internal::store {

class StoreLock {
 public:
  /// Waits for whoever holds it, on this thread or another, in this process or another.
  StoreLock(const NSURL& url, NSErrorSlot error);

  [[nodiscard]] bool isHeld() const noexcept { return file_.isOpen(); }

  /// Removes the lock's file, where nobody holds it.
  static void removeFile(const NSURL& url);

 private:
  files::OpenFile file_;
};

}  // namespace ORLFoundation::internal::store
