#include <ORLFoundation/platform/events/CFFileDescriptor.h>

#include <fcntl.h>
#include <unistd.h>

namespace ORLFoundation {
namespace {

short eventsOf(CFOptionFlags types) {
  int events = 0;
  if ((types & kCFFileDescriptorReadCallBack) != 0) events |= NSRunLoopDescriptorRead;
  if ((types & kCFFileDescriptorWriteCallBack) != 0) events |= NSRunLoopDescriptorWrite;
  return static_cast<short>(events);
}

/// What is ready; a descriptor that hung up or failed is ready for all that was asked.
CFOptionFlags typesOf(short events, CFOptionFlags asked) {
  CFOptionFlags types = 0;
  if ((events & NSRunLoopDescriptorRead) != 0) types |= kCFFileDescriptorReadCallBack;
  if ((events & NSRunLoopDescriptorWrite) != 0) types |= kCFFileDescriptorWriteCallBack;
  return types == 0 ? asked : types & asked;
}

}  // namespace

const std::string kCFRunLoopDefaultMode = "kCFRunLoopDefaultMode";

CFFileDescriptor::~CFFileDescriptor() { invalidate(); }

void CFFileDescriptor::addToLoop(const std::shared_ptr<NSRunLoop>& loop, const std::string& mode) {
  const std::lock_guard guard(lock_);
  if (!isValid_) return;
  places_.push_back({loop, mode, nullptr});
  listen(places_.back());
}

void CFFileDescriptor::enable(CFOptionFlags callBackTypes) {
  const std::lock_guard guard(lock_);
  if (!isValid_) return;
  enabled_ |= callBackTypes;
  for (Place& place : places_) listen(place);
}

void CFFileDescriptor::listen(Place& place) {
  const auto loop = place.loop.lock();
  const short events = eventsOf(enabled_);
  place.token = nullptr;
  if (loop == nullptr || events == 0) return;
  const auto self = std::static_pointer_cast<CFFileDescriptor>(shared_from_this());
  place.token = loop->addDescriptor(descriptor_, events, place.mode,
                                    [weak = std::weak_ptr(self)](short ready) {
                                      if (const auto reference = weak.lock())
                                        reference->fire(ready);
                                    });
}

void CFFileDescriptor::fire(short events) {
  CFOptionFlags types = 0;
  {
    const std::lock_guard guard(lock_);
    types = typesOf(events, enabled_);
    if (!isValid_ || types == 0) return;
    enabled_ &= ~types;
    for (Place& place : places_) listen(place);
  }
  callBack_(std::static_pointer_cast<CFFileDescriptor>(shared_from_this()), types, info_);
}

void CFFileDescriptor::invalidate() {
  std::vector<Place> places;
  {
    const std::lock_guard guard(lock_);
    if (!std::exchange(isValid_, false)) return;
    places.swap(places_);
  }
  places.clear();
  if (closesOnInvalidate_) ::close(descriptor_);
}

bool CFFileDescriptor::isValid() const {
  const std::lock_guard guard(lock_);
  return isValid_;
}

CFFileDescriptorRef CFFileDescriptorCreate(int descriptor, bool closeOnInvalidate,
                                           CFFileDescriptorCallBack callBack, void* info) {
  if (::fcntl(descriptor, F_GETFD) < 0) return nullptr;
  return std::make_shared<CFFileDescriptor>(descriptor, closeOnInvalidate, callBack, info);
}

CFRunLoopSourceRef CFFileDescriptorCreateRunLoopSource(const CFFileDescriptorRef& reference) {
  if (!reference->isValid()) return nullptr;
  return std::make_shared<CFRunLoopSource>(CFRunLoopSource{reference});
}

void CFFileDescriptorEnableCallBacks(const CFFileDescriptorRef& reference,
                                     CFOptionFlags callBackTypes) {
  reference->enable(callBackTypes);
}

void CFFileDescriptorInvalidate(const CFFileDescriptorRef& reference) { reference->invalidate(); }

std::shared_ptr<NSRunLoop> CFRunLoopGetCurrent() { return NSRunLoop::currentRunLoop(); }

void CFRunLoopAddSource(const std::shared_ptr<NSRunLoop>& loop, const CFRunLoopSourceRef& source,
                        const std::string& mode) {
  source->reference->addToLoop(loop, mode);
}

}  // namespace ORLFoundation
