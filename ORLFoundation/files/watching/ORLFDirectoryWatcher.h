/// Tells a target whenever a name is made, removed or renamed in a directory.
///
///     const auto watcher = ORLFDirectoryWatcher::watchFolderWithPath(
///         "/home/ann/books", list, NSSelectorOf<&Ledger::folderChanged>("folderChanged:"));
///     if (!watcher) report("there is no such folder");
///
/// What is written inside the files is not told, nor which name it was. All that happens before the
/// run loop turns is one action. The watcher lives on the run loop of the thread that made it; it
/// is used and dropped on that thread.
#pragma once

#include <ORLFoundation/platform/dispatch/NSSelector.h>
#include <ORLFoundation/platform/events/CFFileDescriptor.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

namespace internal::watching {
class DirectoryEvents;
struct DirectoryWatcherParts;
}  // namespace internal::watching

/// Dropping the last reference stops it.
class ORLFDirectoryWatcher final : public NSObject {
 public:
  /// For `watchFolderWithPath` alone: a watcher that watches nothing.
  ORLFDirectoryWatcher();
  ~ORLFDirectoryWatcher() override;

  /// `watchFolderWithPath:target:action:`  A watcher that calls the action, with itself as the
  /// argument, on the run loop of this thread in the default mode; the target is not held, and one
  /// that has no such operation gets nothing. nil when an argument is missing, and when the
  /// directory cannot be opened or watched.
  [[nodiscard]] static std::shared_ptr<ORLFDirectoryWatcher> watchFolderWithPath(
      const std::optional<std::string>& path, const std::shared_ptr<NSObject>& target,
      std::optional<NSSelector> action);

  /// `invalidate`  Stops for good. No action begins afterwards.
  void invalidate();

  [[nodiscard]] std::shared_ptr<NSObject> target() const { return target_.lock(); }
  [[nodiscard]] const std::optional<NSSelector>& action() const noexcept { return action_; }
  /// `dirFD`, `kq`  The descriptors of the directory and of its queue, -1 when closed.
  [[nodiscard]] std::int32_t dirFD() const noexcept { return dirFD_; }
  [[nodiscard]] std::int32_t kq() const noexcept { return kq_; }
  /// `dirKQRef`  What binds the queue to the run loop; nil when stopped.
  [[nodiscard]] const CFFileDescriptorRef& dirKQRef() const noexcept { return dirKQRef_; }

  [[nodiscard]] std::string className() const override { return "ORLFDirectoryWatcher"; }

 private:
  friend struct internal::watching::DirectoryWatcherParts;

  /// `startMonitoringDirectory:`  false, with nothing left open, when a step fails, and when it
  /// watches already.
  bool startMonitoringDirectory(const std::string& path);
  [[nodiscard]] bool openQueue(const std::string& path);
  /// `kqueueFired`
  void kqueueFired();
  /// Ends the process unless a watcher is called for its own queue, which can be read.
  static void KQCallback(const CFFileDescriptorRef& kqRef, CFOptionFlags callBackTypes, void* info);

  std::weak_ptr<NSObject> target_;
  std::optional<NSSelector> action_;
  std::int32_t dirFD_ = -1;
  std::int32_t kq_ = -1;
  CFFileDescriptorRef dirKQRef_;
  std::shared_ptr<internal::watching::DirectoryEvents> events_;
};

}  // namespace ORLFoundation
