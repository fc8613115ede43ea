#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>

#include <ORLFoundation/files/watching/internal/FileEvents.h>
#include <ORLFoundation/platform/events/NodeFlags.h>
#include <ORLFoundation/platform/events/dispatch_vnode_source.h>

#include <utility>

namespace ORLFoundation {

using internal::events::kNodeSettled;
using internal::watching::FileEvents;

namespace {

constexpr std::uint64_t kEnds =
    DISPATCH_VNODE_DELETE | DISPATCH_VNODE_RENAME | DISPATCH_VNODE_REVOKE;

struct FlagEvent {
  std::uint64_t flags;
  ORLFFileSystemEvent event;
};

/// The first that holds one of the bits counts.
constexpr FlagEvent kFlagEvents[] = {
    {DISPATCH_VNODE_DELETE, ORLFFileSystemEventDeleted},
    {DISPATCH_VNODE_RENAME, ORLFFileSystemEventMoved},
    {DISPATCH_VNODE_REVOKE, ORLFFileSystemEventRevoked},
    {DISPATCH_VNODE_WRITE | DISPATCH_VNODE_EXTEND | DISPATCH_VNODE_ATTRIB | DISPATCH_VNODE_LINK,
     ORLFFileSystemEventChanged},
};

}  // namespace

/// What a source was made of, for its event handler.
struct ORLFFileSystemObserver::Fired {
  DispatchVNodeSource* source;
  std::int32_t descriptor;
  std::uint64_t mask;
};

NSInteger ORLFFileSystemObserver::eventForVNodeFlag(std::uint64_t flag) noexcept {
  for (const FlagEvent& row : kFlagEvents)
    if ((flag & row.flags) != 0) return row.event;
  return ORLFFileSystemEventNone;
}

ORLFFileSystemObserver::ORLFFileSystemObserver(NSURL url, const dispatch_queue_t& queue,
                                               EventHandler handler)
    : url_(std::move(url)),
      eventHandler_(std::move(handler)),
      eventQueue_(queue ? queue : dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0)) {}

ORLFFileSystemObserver::~ORLFFileSystemObserver() {
  if (dispatchSource_) dispatch_source_cancel(dispatchSource_);
}

std::shared_ptr<DispatchVNodeSource> ORLFFileSystemObserver::dispatchSource() const {
  const std::lock_guard guard(lock_);
  return dispatchSource_;
}

bool ORLFFileSystemObserver::isObserving() const { return dispatchSource() != nullptr; }

bool ORLFFileSystemObserver::startObserving() {
  if (isObserving()) return false;
  const std::string path = url_.path();
  const std::int32_t descriptor = FileEvents::current()->open(path);
  if (descriptor < 0) return false;
  if (observe({descriptor, path}, DISPATCH_VNODE_WRITE | kEnds, nullptr,
              [this] { deliverStart(); }))
    return true;
  FileEvents::current()->close(descriptor);
  return false;
}

void ORLFFileSystemObserver::deliverStart() {
  if (!eventHandler_) return;
  dispatch_async(eventQueue_,
                 [self = std::static_pointer_cast<ORLFFileSystemObserver>(shared_from_this())] {
                   self->eventHandler_(ORLFFileSystemEventStarted, std::nullopt);
                 });
}

void ORLFFileSystemObserver::stopObserving() {
  dispatch_vnode_source_t source;
  {
    const std::lock_guard guard(lock_);
    source.swap(dispatchSource_);
  }
  if (source) dispatch_source_cancel(source);
}

bool ORLFFileSystemObserver::startObservingFileDescriptor(std::int32_t descriptor,
                                                          std::uint64_t events) {
  return observe({descriptor, std::nullopt}, events | kEnds, nullptr, nullptr);
}

bool ORLFFileSystemObserver::observe(const Place& place, std::uint64_t mask, const Fired* replaced,
                                     const std::function<void()>& begin) {
  if (place.descriptor < 0) return false;
  const auto events = FileEvents::current();
  const std::uint64_t settled = settledHandler_ ? kNodeSettled : 0;
  const dispatch_vnode_source_t source =
      events->makeSource(place.descriptor, mask | settled, eventQueue_, place.path);
  if (!source) return false;
  // The handler keeps the observer while the source lives.
  dispatch_source_set_event_handler(
      source, [self = std::static_pointer_cast<ORLFFileSystemObserver>(shared_from_this()),
               fired = Fired{source.get(), place.descriptor, mask}] { self->handle(fired); });
  dispatch_source_set_cancel_handler(
      source, [events, descriptor = place.descriptor] { events->close(descriptor); });
  dispatch_vnode_source_t before = source;
  {
    const std::lock_guard guard(lock_);
    // Stopped while it was reopened: it stays so.
    const bool isStopped = replaced != nullptr && dispatchSource_.get() != replaced->source;
    if (!isStopped) before.swap(dispatchSource_);
  }
  if (before) dispatch_source_cancel(before);
  if (begin) begin();
  dispatch_resume(source);
  return true;
}

void ORLFFileSystemObserver::handle(const Fired& fired) {
  const std::uint64_t flags = fired.source->data();
  NSInteger event = eventForVNodeFlag(flags);
  std::optional<NSURL> place;
  const bool isEnd = event >= ORLFFileSystemEventDeleted;
  const bool isReopened = isEnd && event != ORLFFileSystemEventRevoked && reopen(fired);
  if (isReopened) event = ORLFFileSystemEventChanged;
  if (event == ORLFFileSystemEventMoved) event = eventForMove(fired.descriptor, place);
  if (isEnd && !isReopened) end(fired);
  const bool wasObserving = isObserving();
  if (event != ORLFFileSystemEventNone && eventHandler_) eventHandler_(event, place);
  const bool isStopped = wasObserving && !isObserving();
  if ((flags & kNodeSettled) != 0 && settledHandler_ && !isStopped) settledHandler_();
}

bool ORLFFileSystemObserver::reopen(const Fired& fired) {
  const std::string path = url_.path();
  const std::int32_t descriptor = FileEvents::current()->open(path);
  if (observe({descriptor, path}, fired.mask, &fired, nullptr)) return true;
  if (descriptor >= 0) FileEvents::current()->close(descriptor);
  return false;
}

NSInteger ORLFFileSystemObserver::eventForMove(std::int32_t descriptor,
                                               std::optional<NSURL>& place) const {
  const std::optional<std::string> path = FileEvents::current()->pathOf(descriptor);
  if (!path) return ORLFFileSystemEventMoved;
  const NSURL found = NSURL::fileURLWithPath(*path);
  if (FileEvents::current()->relationshipOfTrash(found) == NSURLRelationshipContains)
    return ORLFFileSystemEventDeleted;
  place = found;
  return ORLFFileSystemEventMoved;
}

void ORLFFileSystemObserver::end(const Fired& fired) {
  dispatch_vnode_source_t source;
  {
    const std::lock_guard guard(lock_);
    if (dispatchSource_.get() == fired.source) source.swap(dispatchSource_);
  }
  if (source) dispatch_source_cancel(source);
}

}  // namespace ORLFoundation
