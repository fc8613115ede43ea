
#include <ORLFoundation/platform/dispatch/dispatch_source.h>

#include <ORLFoundation/platform/dispatch/internal/Keeper.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <sys/ioctl.h>

#include <mutex>
#include <utility>

namespace ORLFoundation {

namespace internal::dispatch {

class Source final : public std::enable_shared_from_this<Source> {
 public:
  Source(int descriptor, short events, dispatch_queue_t queue) : queue_(std::move(queue)) {
    watch_.descriptor = descriptor;
    watch_.events = events;
    watch_.modes.emplace_back(kDefaultMode);
    watch_.ready = [this](short) { becomeReady(); };
  }

  void setEventHandler(dispatch_block_t block) {
    const std::lock_guard guard(lock_);
    onEvent_.swap(block);
  }
  void setCancelHandler(dispatch_block_t block) {
    const std::lock_guard guard(lock_);
    onCancel_.swap(block);
  }
  [[nodiscard]] std::uint64_t data() const {
    int count = 0;
    if (watch_.events != POLLIN || ::ioctl(watch_.descriptor, FIONREAD, &count) != 0) return 0;
    return count > 0 ? static_cast<std::uint64_t>(count) : 0;
  }
  void resume() {
    const std::lock_guard guard(lock_);
    if (std::exchange(isResumed_, true) || isCancelled_) return;
    Keeper::shared().watch(watch());
  }
  void cancel() {
    const std::lock_guard guard(lock_);
    if (std::exchange(isCancelled_, true)) return;
    Keeper::shared().unwatch(watch());
    if (!isHandling_) dispatch_async(queue_, [self = shared_from_this()] { self->end(); });
  }
  [[nodiscard]] bool isCancelled() const {
    const std::lock_guard guard(lock_);
    return isCancelled_;
  }

 private:
  /// As the keeper holds it: with the source.
  [[nodiscard]] std::shared_ptr<Watch> watch() { return {shared_from_this(), &watch_}; }

  /// On the keeper's thread.
  void becomeReady() {
    const std::lock_guard guard(lock_);
    if (isCancelled_) return;
    Keeper::shared().unwatch(watch());
    isHandling_ = true;
    dispatch_async(queue_, [self = shared_from_this()] { self->handle(); });
  }
  void handle() {
    try {
      if (!isCancelled() && onEvent_) onEvent_();
    } catch (...) {  // Out of the main queue: the source goes on.
      concludeHandling();
      throw;
    }
    concludeHandling();
  }
  void concludeHandling() {
    {
      const std::lock_guard guard(lock_);
      isHandling_ = false;
      if (!isCancelled_) return Keeper::shared().watch(watch());
    }
    end();
  }
  void end() {
    const dispatch_block_t onCancel = std::exchange(onCancel_, nullptr);
    onEvent_ = nullptr;
    if (onCancel) onCancel();
  }

  mutable std::mutex lock_;
  const dispatch_queue_t queue_;
  Watch watch_;
  dispatch_block_t onEvent_, onCancel_;
  bool isResumed_ = false;
  bool isHandling_ = false;  // From the event to the handler's end.
  bool isCancelled_ = false;
};

}  // namespace internal::dispatch

namespace {

internal::dispatch::Source& checked(const dispatch_source_t& source) {
  if (!source) ORLFFatalError("a source that is nil", __FILE__, __LINE__);
  return *source;
}

}  // namespace

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, int descriptor,
                                         std::uint64_t mask, const dispatch_queue_t& queue) {
  const bool isKnown = type == DISPATCH_SOURCE_TYPE_READ || type == DISPATCH_SOURCE_TYPE_WRITE;
  if (!isKnown || descriptor < 0 || mask != 0 || !queue) return nullptr;
  const short events = type == DISPATCH_SOURCE_TYPE_READ ? POLLIN : POLLOUT;
  return std::make_shared<internal::dispatch::Source>(descriptor, events, queue);
}

void dispatch_source_set_event_handler(const dispatch_source_t& source, dispatch_block_t block) {
  checked(source).setEventHandler(std::move(block));
}

void dispatch_source_set_cancel_handler(const dispatch_source_t& source, dispatch_block_t block) {
  checked(source).setCancelHandler(std::move(block));
}

std::uint64_t dispatch_source_get_data(const dispatch_source_t& source) {
  return checked(source).data();
}

void dispatch_resume(const dispatch_source_t& source) { checked(source).resume(); }

void dispatch_source_cancel(const dispatch_source_t& source) { checked(source).cancel(); }

std::int64_t dispatch_source_testcancel(const dispatch_source_t& source) {
  return checked(source).isCancelled() ? 1 : 0;
}

}  // namespace ORLFoundation
