#include <ORLFoundation/platform/events/internal/NodeThreads.h>

#include <ORLFoundation/platform/base/NoSignals.h>

#include <sys/epoll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace ORLFoundation::internal::events {
namespace {

constexpr int kThreads = 2;
constexpr auto kLongestEnd = std::chrono::milliseconds(50);

/// Threads that wait for the kernel, and those that work for a report.
std::atomic<int> waiting{0};
std::atomic<int> working{0};
std::atomic<bool> isEnding{false};

/// Wakes one thread for each change (EPOLLET): who is woken reads all.
bool add(int poll, int descriptor, std::uint32_t events) {
  epoll_event event{};
  event.events = events | EPOLLET;
  event.data.fd = descriptor;
  return descriptor < 0 || ::epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

void serve(NodeWatcher& watcher, int poll) {
  while (!isEnding) {
    epoll_event event{};
    ++waiting;
    const int found = ::epoll_wait(poll, &event, 1, -1);
    --waiting;
    // Somebody has closed what is not his: there is nothing more to wait for.
    if (found < 0 && errno != EINTR) return;
    NodeTurn turn(waiting > 0);
    ++working;
    if (!isEnding) {
      watcher.pump(turn, event.data.fd == watcher.mountTable().descriptor());
      turn.run();
    }
    --working;
  }
}

/// While the process ends, what handlers use may be gone: none begins any more, and those that run
/// are waited for, but not for long.
void end() {
  isEnding = true;
  const auto limit = std::chrono::steady_clock::now() + kLongestEnd;
  while (working > 0 && std::chrono::steady_clock::now() < limit)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

}  // namespace

bool serveWithThreads(NodeWatcher& watcher) {
  const int poll = ::epoll_create1(EPOLL_CLOEXEC);
  if (poll < 0) return false;
  int started = 0;
  if (add(poll, watcher.queue().descriptor(), EPOLLIN) &&
      add(poll, watcher.mountTable().descriptor(), EPOLLPRI)) {
    const base::NoSignals noSignals;
    try {
      for (; started < kThreads; ++started)
        std::thread([&watcher, poll] { serve(watcher, poll); }).detach();
    } catch (const std::system_error& error) {
      errno = error.code().value();
    }
  }
  if (started > 0) {
    std::atexit(end);
    return true;
  }
  const int number = errno;
  ::close(poll);
  errno = number;
  return false;
}

}  // namespace ORLFoundation::internal::events
