/// The time from a write to the handler of an observer, and from a writer's close to the settled
/// handler, beside those of a thread that sleeps in a read of the kernel's own queue.
#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace {

using namespace ORLFoundation;
using Clock = std::chrono::steady_clock;

/// When something was last told, for the thread that waits for it.
class Told {
 public:
  void tell() {
    time_ = Clock::now();
    ++count_;
    count_.notify_one();
  }
  [[nodiscard]] unsigned count() const { return count_; }
  /// Waits for more than so many, and gives the time of the last.
  [[nodiscard]] Clock::time_point after(unsigned count) const {
    count_.wait(count);
    return time_;
  }

 private:
  Clock::time_point time_;
  std::atomic<unsigned> count_{0};
};

/// A file for the time of a benchmark, and what was told of it.
struct Watched {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.write("file", "");
  Told written;
  Told settled;
};

struct ByObserver : Watched {
  explicit ByObserver(bool isSettledAsked)
      : observer(std::make_shared<ORLFFileSystemObserver>(
            NSURL::fileURLWithPath(path), dispatch_queue_create("watch", DISPATCH_QUEUE_SERIAL),
            [this](NSInteger, const std::optional<NSURL>&) { written.tell(); })) {
    if (isSettledAsked) observer->setSettledHandler([this] { settled.tell(); });
    observer->startObserving();
    static_cast<void>(written.after(0));
  }
  ~ByObserver() {
    observer->stopObserving();
    dispatch_sync(observer->eventQueue(), [] {});
  }
  ByObserver(const ByObserver&) = delete;
  ByObserver& operator=(const ByObserver&) = delete;

  const std::shared_ptr<ORLFFileSystemObserver> observer;
};

struct ByReading : Watched {
  explicit ByReading(bool isSettledAsked)
      : queue(::inotify_init1(IN_CLOEXEC)),
        watch(::inotify_add_watch(queue, path.c_str(),
                                  isSettledAsked ? IN_MODIFY | IN_CLOSE_WRITE : IN_MODIFY)),
        reader([this] { read(); }) {}
  ~ByReading() {
    ::inotify_rm_watch(queue, watch);  // ends the reader
    reader.join();
    ::close(queue);
  }
  ByReading(const ByReading&) = delete;
  ByReading& operator=(const ByReading&) = delete;

  void read() {
    inotify_event event{};
    while (::read(queue, &event, sizeof event) > 0) {
      if ((event.mask & IN_IGNORED) != 0) return;
      if ((event.mask & IN_MODIFY) != 0) written.tell();
      if ((event.mask & IN_CLOSE_WRITE) != 0) settled.tell();
    }
  }

  const int queue;
  const int watch;
  std::thread reader;
};

/// Seconds until what the act brings about was told.
double secondsUntil(const Told& told, const std::function<void()>& act) {
  const unsigned before = told.count();
  const auto begun = Clock::now();
  act();
  return std::chrono::duration<double>(told.after(before) - begun).count();
}

template <class Way>
void writeToHandler(benchmark::State& state) {
  Way way(false);
  const int file = ::open(way.path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  for (auto _ : state)
    state.SetIterationTime(secondsUntil(way.written, [&] {
      if (::write(file, "x", 1) != 1) state.SkipWithError("nothing was written");
    }));
  ::close(file);
}

template <class Way>
void closeToHandler(benchmark::State& state) {
  Way way(true);
  for (auto _ : state) {
    const int file = ::open(way.path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    secondsUntil(way.written, [&] {
      if (::write(file, "x", 1) != 1) state.SkipWithError("nothing was written");
    });
    state.SetIterationTime(secondsUntil(way.settled, [&] { ::close(file); }));
  }
}

BENCHMARK(writeToHandler<ByObserver>)->Name("Write to handler/ours")->UseManualTime();
BENCHMARK(writeToHandler<ByReading>)->Name("Write to handler/inotify")->UseManualTime();
BENCHMARK(closeToHandler<ByObserver>)->Name("Close to settled handler/ours")->UseManualTime();
BENCHMARK(closeToHandler<ByReading>)->Name("Close to settled handler/inotify")->UseManualTime();

}  // namespace
