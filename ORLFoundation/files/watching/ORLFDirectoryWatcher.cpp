#include <ORLFoundation/files/watching/ORLFDirectoryWatcher.h>

#include <ORLFoundation/files/watching/internal/DirectoryEvents.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>

#include <utility>

/// Ends the process, with the text, where a thing is not as it must be.
#define ORLF_WATCHER_ASSERT(condition, text) \
  ((condition) ? static_cast<void>(0) : ORLFFatalError(text, __FILE__, __LINE__))

namespace ORLFoundation {

using internal::watching::DirectoryEvents;

ORLFDirectoryWatcher::ORLFDirectoryWatcher() : events_(DirectoryEvents::current()) {}

ORLFDirectoryWatcher::~ORLFDirectoryWatcher() { invalidate(); }

std::shared_ptr<ORLFDirectoryWatcher> ORLFDirectoryWatcher::watchFolderWithPath(
    const std::optional<std::string>& path, const std::shared_ptr<NSObject>& target,
    std::optional<NSSelector> action) {
  if (!path || !target || !action) return nullptr;
  auto watcher = std::make_shared<ORLFDirectoryWatcher>();
  if (!watcher->startMonitoringDirectory(*path)) return nullptr;
  watcher->target_ = target;
  watcher->action_ = std::move(action);
  return watcher;
}

bool ORLFDirectoryWatcher::startMonitoringDirectory(const std::string& path) {
  if (dirKQRef_ || dirFD_ != -1 || kq_ != -1) return false;
  if (openQueue(path))
    dirKQRef_ = events_->makeReference(kq_, KQCallback, static_cast<NSObject*>(this));
  const auto source = dirKQRef_ ? events_->makeRunLoopSource(dirKQRef_) : nullptr;
  if (source) {
    events_->addToCurrentRunLoop(source, kCFRunLoopDefaultMode);
    events_->enableReadCallBacks(dirKQRef_);
    return true;
  }
  if (!dirKQRef_ && kq_ != -1) events_->closeQueue(std::exchange(kq_, -1));
  invalidate();
  return false;
}

/// The first steps: a directory that is registered with a queue.
bool ORLFDirectoryWatcher::openQueue(const std::string& path) {
  dirFD_ = events_->open(path);
  if (dirFD_ < 0) return false;
  kq_ = events_->makeQueue();
  if (kq_ < 0) return false;
  return events_->add({.queue = kq_,
                       .identifier = dirFD_,
                       .filter = internal::watching::kVnodeFilter,
                       .flags = internal::watching::kAddAndClear,
                       .filterFlags = internal::watching::kWritten});
}

void ORLFDirectoryWatcher::KQCallback(const CFFileDescriptorRef& kqRef, CFOptionFlags callBackTypes,
                                      void* info) {
  auto* const obj = dynamic_cast<ORLFDirectoryWatcher*>(static_cast<NSObject*>(info));
  ORLF_WATCHER_ASSERT(obj != nullptr, "[obj isKindOfClass:[ORLFDirectoryWatcher class]]");
  ORLF_WATCHER_ASSERT(kqRef == obj->dirKQRef_, "kqRef == obj->dirKQRef");
  ORLF_WATCHER_ASSERT(callBackTypes == kCFFileDescriptorReadCallBack,
                      "callBackTypes == kCFFileDescriptorReadCallBack");
  obj->kqueueFired();
}

void ORLFDirectoryWatcher::kqueueFired() {
  ORLF_WATCHER_ASSERT(kq_ >= 0, "kq >= 0");
  /// Callbacks are for once; the next comes also when the action throws.
  struct Listening {
    ~Listening() {
      if (watcher.dirKQRef_) watcher.events_->enableReadCallBacks(watcher.dirKQRef_);
    }
    const ORLFDirectoryWatcher& watcher;
  };
  const auto self = shared_from_this();  // the action may drop the watcher
  const Listening listening{*this};
  const std::shared_ptr<NSObject> target = target_.lock();
  const int eventCount = events_->drain(kq_);
  ORLF_WATCHER_ASSERT(eventCount >= 0 && eventCount < 2, "(eventCount >= 0) && (eventCount < 2)");
  if (action_ && target) action_->perform(target, self);
}

void ORLFDirectoryWatcher::invalidate() {
  if (dirKQRef_) {
    events_->invalidate(std::exchange(dirKQRef_, nullptr));
    kq_ = -1;  // closed with the reference
  }
  if (dirFD_ != -1) events_->closeDirectory(std::exchange(dirFD_, -1));
}

}  // namespace ORLFoundation
