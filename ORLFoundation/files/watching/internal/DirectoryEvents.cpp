#include <ORLFoundation/files/watching/internal/DirectoryEvents.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <ORLFoundation/platform/events/NodeWatcher.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace ORLFoundation::internal::watching {
namespace {

/// A queue is a counter that can be read once something was told, however often. What is told to it
/// is registered under its descriptor.
class MachineDirectoryEvents final : public DirectoryEvents {
 public:
  [[nodiscard]] std::int32_t open(const std::string& path) override {
    return events::openForEvents(path);
  }
  [[nodiscard]] std::int32_t makeQueue() override {
    return ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  }

  [[nodiscard]] bool add(const DirectoryRegistration& registration) override {
    events::NodeWatcher* const watcher = events::NodeWatcher::shared();
    if (watcher == nullptr || registration.filter != kVnodeFilter) return false;
    const auto tell = [queue = registration.queue](std::uint64_t, events::NodeTurn&) {
      static_cast<void>(::eventfd_write(queue, 1));
    };
    auto watch = watcher->watch({.descriptor = registration.identifier,
                                 .flags = registration.filterFlags,
                                 .openedAt = std::nullopt,
                                 .report = tell});
    if (watch == nullptr) return false;
    const std::lock_guard guard(lock_);
    watches_[registration.queue] = std::move(watch);
    return true;
  }

  [[nodiscard]] CFFileDescriptorRef makeReference(std::int32_t queue,
                                                  CFFileDescriptorCallBack callBack,
                                                  void* info) override {
    return CFFileDescriptorCreate(queue, true, callBack, info);
  }
  [[nodiscard]] CFRunLoopSourceRef makeRunLoopSource(
      const CFFileDescriptorRef& reference) override {
    return CFFileDescriptorCreateRunLoopSource(reference);
  }
  void addToCurrentRunLoop(const CFRunLoopSourceRef& source, const std::string& mode) override {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, mode);
  }
  void enableReadCallBacks(const CFFileDescriptorRef& reference) override {
    CFFileDescriptorEnableCallBacks(reference, kCFFileDescriptorReadCallBack);
  }
  void invalidate(const CFFileDescriptorRef& reference) override {
    endWatch(reference->descriptor());
    CFFileDescriptorInvalidate(reference);
  }

  [[nodiscard]] int drain(std::int32_t queue) override {
    eventfd_t count = 0;
    if (::eventfd_read(queue, &count) == 0) return 1;
    return errno == EAGAIN ? 0 : -1;
  }
  void closeQueue(std::int32_t queue) override {
    endWatch(queue);
    ::close(queue);
  }
  void closeDirectory(std::int32_t directory) override { ::close(directory); }

 private:
  /// Before the queue is closed: nothing is to be told to the next file of its number.
  void endWatch(std::int32_t queue) {
    std::unique_ptr<events::NodeWatch> ended;
    const std::lock_guard guard(lock_);
    const auto found = watches_.find(queue);
    if (found == watches_.end()) return;
    ended = std::move(found->second);
    watches_.erase(found);
  }

  std::mutex lock_;
  std::map<std::int32_t, std::unique_ptr<events::NodeWatch>> watches_;
};

constinit base::Replaceable<DirectoryEvents> directoryDoor(
    []() -> std::shared_ptr<DirectoryEvents> {
      return std::make_shared<MachineDirectoryEvents>();
    });

}  // namespace

std::shared_ptr<DirectoryEvents> DirectoryEvents::current() { return directoryDoor.current(); }

std::shared_ptr<DirectoryEvents> DirectoryEvents::exchange(
    std::shared_ptr<DirectoryEvents> events) {
  return directoryDoor.exchange(std::move(events));
}

}  // namespace ORLFoundation::internal::watching
