/// Follows one file by its path through edits, atomic saves, renames and deletion, and tells a
/// handler what happened to it.
///
///     const auto observer = std::make_shared<ORLFFileSystemObserver>(
///         NSURL::fileURLWithPath("/home/ann/plan.json"), dispatch_get_main_queue(),
///         [](NSInteger event, const std::optional<NSURL>& place) {
///           if (event == ORLFFileSystemEventChanged) reload();
///           if (event == ORLFFileSystemEventMoved && place) follow(*place);
///         });
///     if (!observer->startObserving()) report("there is no such file");
///
/// What is observed is the file, by a descriptor, and not its name: a folder around it that is
/// renamed, and a link on the way that leads elsewhere, are noticed with the file's next event. A
/// file of several names is observed under one of them. Nothing is gathered over time: what comes
/// while the queue is busy is one event, and otherwise each report of the kernel makes one.
///
/// A descriptor that is held hinders plain unmounting; event 5 tells of a lazy one. The kernel
/// reports no writes through a mapping of the file, nor those of other machines on a network.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace ORLFoundation {

class DispatchVNodeSource;

enum ORLFFileSystemEvent : NSInteger {
  /// Nothing that matters; never delivered.
  ORLFFileSystemEventNone = 0,
  /// Observation has begun.
  ORLFFileSystemEventStarted = 1,
  /// Written, extended, attributes or links changed, or the file was replaced at its path.
  ORLFFileSystemEventChanged = 2,
  /// Gone, or moved to the Trash; observation has ended.
  ORLFFileSystemEventDeleted = 3,
  /// Moved elsewhere, to the address that comes with it if it is known; observation has ended.
  ORLFFileSystemEventMoved = 4,
  /// Access was revoked; observation has ended.
  ORLFFileSystemEventRevoked = 5,
};

/// Destruction ends observation; but an observer that observes is kept alive by that until it is
/// stopped or its file has ended. The operations are not to race each other or the handler; who
/// calls them on the event queue is always right.
class ORLFFileSystemObserver : public NSObject {
 public:
  using EventHandler = std::function<void(NSInteger event, const std::optional<NSURL>& location)>;

  /// `initWithURL:queue:handler:`  An idle observer. A queue that is nil is the global one of
  /// default priority: its blocks run side by side, so that event 1 may come after the first others
  /// there.
  ORLFFileSystemObserver(NSURL url, const dispatch_queue_t& queue, EventHandler handler);
  ~ORLFFileSystemObserver() override;

  /// `eventForVNodeFlag:`  The event of a word of flags: deletion before renaming before revocation
  /// before any change; `ORLFFileSystemEventNone` for other bits.
  [[nodiscard]] static NSInteger eventForVNodeFlag(std::uint64_t flag) noexcept;

  /// The path that is followed; it stays when the file moves.
  [[nodiscard]] const NSURL& url() const noexcept { return url_; }
  [[nodiscard]] const EventHandler& eventHandler() const noexcept { return eventHandler_; }
  [[nodiscard]] const dispatch_queue_t& eventQueue() const noexcept { return eventQueue_; }
  /// `dispatchSource`  nil while idle.
  [[nodiscard]] std::shared_ptr<DispatchVNodeSource> dispatchSource() const;
  /// `isObserving`  From `startObserving` until `stopObserving`, or until an event 3, 4 or 5.
  [[nodiscard]] bool isObserving() const;

  /// Called on the event queue whenever a writer closes the file after a write, beside the events:
  /// what is read then is whole. For files that are written in place; one that is put in place by
  /// renaming was closed before, and its event 2 tells of it. Without polling; nothing where it is
  /// empty. Set it before `startObserving`.
  void setSettledHandler(std::function<void()> handler) { settledHandler_ = std::move(handler); }

  /// `startObserving`  Opens the path and delivers event 1, then an event for all that happens to
  /// what stands there. false, and nothing is delivered, when there is nothing or the user may not
  /// read it, and when it observes already. From the handler of an event that ended observation it
  /// begins anew.
  bool startObserving();
  /// `stopObserving`  No event begins afterwards but an event 1 that is on its way.
  void stopObserving();
  /// `startObservingFileDescriptor:events:`  Observes what a descriptor stands for, for the flags
  /// of `events` and the ends (DISPATCH_VNODE_DELETE, _RENAME, _REVOKE), in place of what was
  /// observed. Delivers no event 1. Takes the descriptor over: it is closed when that observation
  /// ends. false, with all as before, for one that cannot be observed.
  bool startObservingFileDescriptor(std::int32_t descriptor, std::uint64_t events);

  [[nodiscard]] std::string className() const override { return "ORLFFileSystemObserver"; }

 private:
  struct Fired;

  /// What is observed: the descriptor and, if it was just opened by a path, the path.
  struct Place {
    std::int32_t descriptor;
    std::optional<std::string> path;
  };

  /// Observes in place of `replaced` or of whatever was observed; does `begin` before anything can
  /// be told.
  bool observe(const Place& place, std::uint64_t mask, const Fired* replaced,
               const std::function<void()>& begin);
  void deliverStart();
  void handle(const Fired& fired);
  [[nodiscard]] bool reopen(const Fired& fired);
  /// Where the file of a descriptor is now; what becomes of event 4.
  [[nodiscard]] NSInteger eventForMove(std::int32_t descriptor, std::optional<NSURL>& place) const;
  void end(const Fired& fired);

  const NSURL url_;
  const EventHandler eventHandler_;
  const dispatch_queue_t eventQueue_;
  std::function<void()> settledHandler_;
  mutable std::mutex lock_;
  std::shared_ptr<DispatchVNodeSource> dispatchSource_;
};

}  // namespace ORLFoundation
