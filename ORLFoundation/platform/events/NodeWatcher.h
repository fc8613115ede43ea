/// Watches files and folders by descriptors, any number of them through the kernel's one queue. A
/// watch belongs to the descriptor: it stays with the file wherever that is moved, and of the names
/// of one file each watch tells of its own.
///
///     const auto watch = NodeWatcher::shared()->watch(
///         {.descriptor = descriptor,
///          .flags = kNodeWrite | kNodeDelete,
///          .openedAt = std::nullopt,
///          .report = [](std::uint64_t flags, NodeTurn&) { note(flags); }});
///
/// What the kernel does not tell: writes through a mapping of the file, and writes on other
/// machines to a file system of the network. A child that the process forks without `exec` has no
/// watches.
#pragma once

#include <ORLFoundation/platform/events/KernelEvents.h>
#include <ORLFoundation/platform/events/NodeFlags.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::events {

class NodeWatcher;
struct NodeUser;

/// What a thread that reports may do itself when it has reported all, where another thread goes on
/// waiting for the kernel meanwhile.
class NodeTurn {
 public:
  explicit NodeTurn(bool isFree) : isFree_(isFree) {}

  [[nodiscard]] bool isFree() const noexcept { return isFree_; }
  /// Of a free turn.
  void take(std::function<void()> work) {
    isFree_ = false;
    work_ = std::move(work);
  }
  /// Does what the turn was taken for, if it was.
  void run() {
    if (const auto work = std::exchange(work_, nullptr)) work();
  }

 private:
  bool isFree_;
  std::function<void()> work_;
};

/// Gets the asked flags that came together. Called on whichever thread finds them, under a lock of
/// the watcher: it notes them, may take the thread's turn, and comes back; it asks for no watch.
using NodeReport = std::function<void(std::uint64_t flags, NodeTurn& turn)>;

struct NodeRequest {
  /// Stays open while the watch lives.
  int descriptor = -1;
  /// Those to be told of; a folder tells of written names by `kNodeWrite`.
  std::uint64_t flags = 0;
  /// The path by which the descriptor was just opened, if it is to be watched from that time on:
  /// where it leads to something else by now, `kNodeRename` is told at once.
  std::optional<std::string> openedAt;
  NodeReport report;
};

/// Ends when it dies; but for one in which that happens, no report runs by then.
class NodeWatch {
 public:
  NodeWatch(NodeWatcher& watcher, std::shared_ptr<NodeUser> user)
      : watcher_(watcher), user_(std::move(user)) {}
  ~NodeWatch();
  NodeWatch(const NodeWatch&) = delete;
  NodeWatch& operator=(const NodeWatch&) = delete;

 private:
  NodeWatcher& watcher_;
  const std::shared_ptr<NodeUser> user_;
};

/// Safe on any thread.
class NodeWatcher {
 public:
  /// One for the process, with threads of its own that wait for the kernel. nullptr, with errno,
  /// while the kernel gives no queue or no thread; the next call tries again.
  [[nodiscard]] static NodeWatcher* shared();

  NodeWatcher(std::unique_ptr<KernelQueue> queue, std::unique_ptr<MountTable> mounts);
  ~NodeWatcher();
  NodeWatcher(const NodeWatcher&) = delete;
  NodeWatcher& operator=(const NodeWatcher&) = delete;

  /// Tells of what happens from now on, and of a file that has ended already: of `kNodeDelete` when
  /// it has no name left. nullptr, with errno, for a bad descriptor, for a file that the user may
  /// not read, and when the user's limit of watches is reached.
  [[nodiscard]] std::unique_ptr<NodeWatch> watch(NodeRequest request);

  /// Reports what the kernel has told so far; when it returns, that has been reported.
  void pump();
  /// The same for a thread that has a turn to give and waits for the table of mounts itself.
  void pump(NodeTurn& turn, bool looksAtMounts);

  [[nodiscard]] const KernelQueue& queue() const noexcept { return *queue_; }
  [[nodiscard]] const MountTable& mountTable() const noexcept { return *mountTable_; }

  /// How many files and folders the kernel watches.
  [[nodiscard]] std::size_t nodes() const;

 private:
  friend class NodeWatch;

  /// Who watches what stands under a number of the kernel's.
  using Users = std::vector<std::shared_ptr<NodeUser>>;
  /// Users that something happened to, each once, in their order.
  using Touched = Users;

  void end(const std::shared_ptr<NodeUser>& user);
  void report(const Touched& touched, NodeTurn& turn);

  // With lock_ held.
  [[nodiscard]] Touched collect(bool looksAtMounts = true);
  void take(const KernelEvent& event, Touched& touched);
  void touch(const std::shared_ptr<NodeUser>& user, std::uint32_t mask, Touched& touched);
  void takeLostEvents(Touched& touched);
  void takeMounts(Touched& touched);
  [[nodiscard]] bool readMounts();
  [[nodiscard]] bool add(const std::shared_ptr<NodeUser>& user, const std::string& path);
  void begin(const std::shared_ptr<NodeUser>& user, Touched& touched);
  void guard(const std::shared_ptr<NodeUser>& user);
  void remove(const std::shared_ptr<NodeUser>& user);
  void passOverArrival(NodeUser& user, Touched& touched);
  void noteStart(NodeUser& user);

  const std::unique_ptr<KernelQueue> queue_;
  const std::unique_ptr<MountTable> mountTable_;
  /// Held while reports are made, so that who pumps or ends can rely on them; before lock_. A
  /// report may end watches.
  std::recursive_mutex reportLock_;
  mutable std::mutex lock_;
  std::unordered_map<int, Users> nodes_;
  std::set<std::uint64_t> mounts_;
  /// The table has changed and was not read since.
  bool areMountsDue_ = false;
};

}  // namespace ORLFoundation::internal::events
