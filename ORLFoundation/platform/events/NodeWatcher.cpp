#include <ORLFoundation/platform/events/NodeWatcher.h>

#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <ORLFoundation/platform/events/internal/NodeState.h>
#include <ORLFoundation/platform/events/internal/NodeThreads.h>
#include <ORLFoundation/platform/events/internal/NodeUser.h>
#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace ORLFoundation::internal::events {

NodeWatch::~NodeWatch() { watcher_.end(user_); }

NodeWatcher* NodeWatcher::shared() {
  static std::mutex lock;
  static NodeWatcher* watcher = nullptr;  // its thread never ends
  const std::lock_guard guard(lock);
  if (watcher != nullptr) return watcher;
  auto queue = KernelQueue::make();
  if (queue == nullptr) return nullptr;
  auto made = std::make_unique<NodeWatcher>(std::move(queue), MountTable::make());
  if (!serveWithThreads(*made)) return nullptr;
  return watcher = made.release();
}

NodeWatcher::NodeWatcher(std::unique_ptr<KernelQueue> queue, std::unique_ptr<MountTable> mounts)
    : queue_(std::move(queue)), mountTable_(std::move(mounts)) {}

NodeWatcher::~NodeWatcher() = default;

std::unique_ptr<NodeWatch> NodeWatcher::watch(NodeRequest request) {
  const auto user = std::make_shared<NodeUser>(std::move(request));
  const auto state = stateOfDescriptor(user->request.descriptor);
  if (!state) return nullptr;
  user->state = *state;

  const std::lock_guard reporting(reportLock_);
  NodeTurn none(false);
  Touched touched;
  int error = 0;
  {
    const std::lock_guard guarding(lock_);
    touched = collect();  // what happened before is not the new user's
    error = add(user, user->handle()) ? 0 : errno;
    if (error == 0) begin(user, touched);
  }
  report(touched, none);
  if (error == 0) return std::make_unique<NodeWatch>(*this, user);
  errno = error;
  return nullptr;
}

void NodeWatcher::begin(const std::shared_ptr<NodeUser>& user, Touched& touched) {
  if (user->state.isFolder()) guard(user);
  if (user->request.openedAt) passOverArrival(*user, touched);
  noteStart(*user);
  if (user->due != 0) touched.push_back(user);
}

void NodeWatcher::pump() {
  NodeTurn none(false);
  pump(none, true);
}

void NodeWatcher::pump(NodeTurn& turn, bool looksAtMounts) {
  const std::lock_guard reporting(reportLock_);
  Touched touched;
  {
    const std::lock_guard guarding(lock_);
    touched = collect(looksAtMounts);
  }
  report(touched, turn);
}

std::size_t NodeWatcher::nodes() const {
  const std::lock_guard guarding(lock_);
  return nodes_.size();
}

void NodeWatcher::end(const std::shared_ptr<NodeUser>& user) {
  const std::lock_guard reporting(reportLock_);
  user->isEnded = true;
  const std::lock_guard guarding(lock_);
  if (user->guard) remove(user->guard);
  remove(user);
}

void NodeWatcher::report(const Touched& touched, NodeTurn& turn) {
  for (const auto& user : touched) {
    const std::uint64_t flags = std::exchange(user->due, 0);
    if (flags != 0 && !user->isEnded) user->request.report(flags, turn);
  }
}

NodeWatcher::Touched NodeWatcher::collect(bool looksAtMounts) {
  Touched touched;
  for (const KernelEvent& event : queue_->read()) take(event, touched);
  if (looksAtMounts || areMountsDue_) takeMounts(touched);
  for (const auto& user : touched) {
    const bool mayBeElsewhere = (user->events & IN_MOVE_SELF) != 0 || user->hasLostEvents;
    if (mayBeElsewhere && user->state.isFolder()) guard(user);
    user->due |= user->flagsSinceLook(*queue_);
  }
  return touched;
}

void NodeWatcher::take(const KernelEvent& event, Touched& touched) {
  if ((event.mask & IN_Q_OVERFLOW) != 0) return takeLostEvents(touched);
  const auto node = nodes_.find(event.watch);
  if (node == nodes_.end()) return;
  if ((event.mask & IN_IGNORED) != 0) {
    for (const auto& user : node->second) user->watch = -1;
    nodes_.erase(node);
    return;
  }
  // What befalls the files in a folder is theirs.
  const std::uint32_t mask =
      event.isOfName ? event.mask & (kNamesCameOrWent | IN_ISDIR) : event.mask;
  if ((mask & ~std::uint32_t{IN_ISDIR}) == 0) return;
  constexpr std::uint32_t kFolderWent = IN_DELETE | IN_ISDIR;
  for (const auto& user : node->second) {
    if (!user->isGuard())
      touch(user, mask, touched);
    else if ((mask & kFolderWent) == kFolderWent)
      if (const auto folder = user->guarded.lock()) touch(folder, 0, touched);
  }
}

void NodeWatcher::touch(const std::shared_ptr<NodeUser>& user, std::uint32_t mask,
                        Touched& touched) {
  if (user->isNew) return;
  if (!user->isTouched) touched.push_back(user);
  user->touch(mask);
}

void NodeWatcher::takeLostEvents(Touched& touched) {
  for (const auto& [watch, users] : nodes_)
    for (const auto& user : users) {
      if (user->isGuard() || user->isNew) continue;
      touch(user, 0, touched);
      user->hasLostEvents = true;
    }
}

void NodeWatcher::takeMounts(Touched& touched) {
  areMountsDue_ = mountTable_->hasChanged() || areMountsDue_;
  if (!areMountsDue_ || !readMounts()) return;
  for (const auto& [watch, users] : nodes_)
    for (const auto& user : users) {
      if (!user->isMounted || mounts_.contains(user->state.mount)) continue;
      user->isMounted = false;
      touch(user, 0, touched);
      user->noted |= kNodeRevoke;
    }
}

/// Nobody's end is told by a table that could not be read, or that changed while it was: it is read
/// again the next time.
bool NodeWatcher::readMounts() {
  constexpr int kMostReadings = 8;
  for (int readings = 0; readings < kMostReadings; ++readings) {
    auto found = mountTable_->mounts();
    if (!found) return false;
    if (mountTable_->hasChanged()) continue;
    mounts_ = std::move(*found);
    areMountsDue_ = false;
    return true;
  }
  return false;
}

bool NodeWatcher::add(const std::shared_ptr<NodeUser>& user, const std::string& path) {
  user->watch = queue_->add(path, user->mask());
  if (user->watch < 0) return false;
  nodes_[user->watch].push_back(user);
  return true;
}

void NodeWatcher::guard(const std::shared_ptr<NodeUser>& user) {
  if (user->guard) remove(std::exchange(user->guard, nullptr));
  const auto guard = std::make_shared<NodeUser>(NodeRequest{});
  guard->guarded = user;
  // Where the folder around is not to be read, the end of this one stays unknown.
  if (add(guard, user->handle() + "/..")) user->guard = guard;
}

void NodeWatcher::remove(const std::shared_ptr<NodeUser>& user) {
  const auto node = nodes_.find(std::exchange(user->watch, -1));
  if (node == nodes_.end()) return;
  auto& users = node->second;
  users.erase(std::remove(users.begin(), users.end(), user), users.end());
  if (users.empty()) {
    queue_->remove(node->first);
    nodes_.erase(node);
    return;
  }
  std::uint32_t mask = 0;
  const NodeUser* holder = nullptr;
  for (const auto& other : users) {
    mask |= other->mask();
    if (!other->isGuard()) holder = other.get();
  }
  if (holder != nullptr) queue_->set(holder->handle(), mask);
}

/// The move that brought a file to its name is told last, when others may have found it there and
/// watch it: it is none of theirs.
void NodeWatcher::passOverArrival(NodeUser& user, Touched& touched) {
  const auto path = pathOfDescriptor(user.request.descriptor);
  if (!path) return;
  queue_->waitForChangesAround(*path);
  user.isNew = true;
  for (const auto& other : collect(false)) touched.push_back(other);
  user.isNew = false;
}

void NodeWatcher::noteStart(NodeUser& user) {
  // Looked at once it is watched: what changes from here on brings an event.
  const std::uint32_t linksBefore = user.state.links;
  if (const auto state = stateOfDescriptor(user.request.descriptor)) user.state = *state;
  user.name = pathOfDescriptor(user.request.descriptor);
  const bool hasLostItsName = user.state.links < linksBefore && !user.name;
  if (hasLostItsName && !user.state.isFolder()) user.due |= kNodeDelete;
  if (!mounts_.contains(user.state.mount))
    if (auto found = mountTable_->mounts()) mounts_ = std::move(*found);
  user.isMounted = mounts_.contains(user.state.mount);
  if (user.state.links == 0) user.due |= kNodeDelete;
  if (const auto& path = user.request.openedAt) {
    const auto found = stateOfPath(*path);
    if (!found || !found->isSameNode(user.state)) user.due |= kNodeRename;
  }
  user.due &= user.request.flags;
}

}  // namespace ORLFoundation::internal::events
