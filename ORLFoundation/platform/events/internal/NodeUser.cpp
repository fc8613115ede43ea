#include <ORLFoundation/platform/events/internal/NodeUser.h>

#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <sys/inotify.h>

namespace ORLFoundation::internal::events {
namespace {

/// The name of a user's descriptor, asked for once at most.
class HeldName final : public NodeName {
 public:
  HeldName(const NodeUser& user, KernelQueue& queue) : user_(user), queue_(queue) {}

  [[nodiscard]] bool isGone() const override {
    if (const auto& found = path()) {
      queue_.waitForChangesAround(*found);
      isKnown_ = false;
    }
    return !path();
  }
  [[nodiscard]] bool isChanged() const override { return path() != user_.name; }
  [[nodiscard]] const std::optional<std::string>& path() const {
    if (!isKnown_) path_ = pathOfDescriptor(user_.request.descriptor);
    isKnown_ = true;
    return path_;
  }
  [[nodiscard]] bool isKnown() const { return isKnown_; }

 private:
  const NodeUser& user_;
  KernelQueue& queue_;
  mutable bool isKnown_ = false;
  mutable std::optional<std::string> path_;
};

}  // namespace

std::string NodeUser::handle() const {
  return "/proc/self/fd/" + std::to_string(request.descriptor);
}

std::uint32_t NodeUser::mask() const noexcept {
  if (isGuard()) return IN_DELETE;
  std::uint32_t mask = IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;
  const bool isWriteAsked = (request.flags & (kNodeWrite | kNodeExtend | kNodeSettled)) != 0;
  if (state.isFolder())
    return isWriteAsked ? mask | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO : mask;
  if (isWriteAsked) mask |= IN_MODIFY;
  if ((request.flags & kNodeSettled) != 0) mask |= IN_OPEN | IN_CLOSE;
  return mask;
}

void NodeUser::touch(std::uint32_t eventMask) {
  isTouched = true;
  events |= eventMask;
  if ((request.flags & kNodeSettled) != 0 && settled_.take(eventMask)) noted |= kNodeSettled;
}

std::uint64_t NodeUser::flagsSinceLook(KernelQueue& queue) {
  std::uint64_t flags = std::exchange(noted, 0);
  const std::uint32_t mask = std::exchange(events, 0);
  const bool isCompared = std::exchange(hasLostEvents, false);
  isTouched = false;
  if (isWriteAlone(mask) && !isCompared) {
    state.seen = state.changed;  // older than what it tells: lost events count as a write
    return (flags | kNodeWrite) & request.flags;
  }
  const std::optional<NodeState> now = stateOfDescriptor(request.descriptor);
  if (now) {
    const HeldName held(*this, queue);
    flags |= flagsOfEvents(mask, state, *now, held);
    if (isCompared) flags |= flagsLost(*now, held);
    if ((flags & kNodeRename) != 0 || held.isKnown()) name = held.path();
    state = *now;
  }
  return flags & request.flags;
}

/// Whether all is known without a look, as it is with most events.
bool NodeUser::isWriteAlone(std::uint32_t mask) const noexcept {
  return mask == IN_MODIFY && (request.flags & kNodeExtend) == 0;
}

std::uint64_t NodeUser::flagsLost(const NodeState& now, const NodeName& held) {
  settled_ = SettledTracker();
  const std::uint64_t flags = flagsOfDifference(state, now, held);
  return (flags & kNodeWrite) != 0 ? flags | kNodeSettled : flags;
}

}  // namespace ORLFoundation::internal::events
