#include <ORLFoundation/files/watching/ORLFFileSystemObserver_testing.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tests/support/ProcessorTime.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::ObservedFile;

/// What stands at a path: its bytes, or nothing.
std::optional<std::string> contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Changes one file in random ways, while an observer of it reads it at each event.
class RandomChanges {
 public:
  RandomChanges(const fs::path& folder, unsigned seed, const dispatch_queue_t& queue)
      : file_(folder / std::to_string(seed)),
        random_(seed),
        left_(random_() % 8 + 1),
        observed_(file_, queue) {
    observed_.onEvent = [this](NSInteger event) {
      lastEvent_ = event;
      lastRead_ = contentOf(file_);
    };
  }

  /// One step of the sequence; false when it has come to its end.
  bool step() {
    if (left_ == 0) return false;
    --left_;
    change();
    pause();
    return true;
  }
  /// "" when the end of the sequence is as it must be. Asked when all events were handled.
  [[nodiscard]] std::string fault() const {
    const auto content = contentOf(file_);
    const bool isEnd = lastEvent_ == 0 || lastEvent_ == 3 || lastEvent_ == 4;
    if (observed_.observer->isObserving() == isEnd) return "observes after its end, or not";
    if (content.has_value() == isEnd) return "ended without its file, or not";
    if (!isEnd && lastRead_ != content) return "read what is not final";
    return {};
  }

 private:
  using Change = void (RandomChanges::*)();

  std::string fresh() { return std::to_string(random_()); }

  void change() {
    static constexpr std::array<Change, 6> kChanges = {
        &RandomChanges::append,   &RandomChanges::overwrite, &RandomChanges::save,
        &RandomChanges::truncate, &RandomChanges::move,      &RandomChanges::remove};
    if (!fs::exists(file_)) return create();
    (this->*kChanges[random_() % kChanges.size()])();
  }

  void create() {
    std::ofstream(file_) << fresh();
    dispatch_async(observed_.queue, [observer = observed_.observer] {
      if (!observer->isObserving()) observer->startObserving();
    });
  }
  void append() { orlftest::appendTo(file_, fresh()); }
  void overwrite() { std::ofstream(file_) << fresh(); }
  void save() { orlftest::saveAtomically(file_, fresh()); }
  void truncate() { fs::resize_file(file_, random_() % 4); }
  void move() { fs::rename(file_, file_.string() + "moved"); }
  void remove() { fs::remove(file_); }

  /// Lets the other threads be anywhere.
  void pause() {
    const auto kind = random_() % 32;
    if (kind == 0) dispatch_sync(observed_.queue, [] {});
    if (kind == 1) std::this_thread::sleep_for(std::chrono::microseconds(random_() % 40));
    if (kind < 8) std::this_thread::yield();
  }

  const fs::path file_;
  std::mt19937 random_;
  unsigned left_;
  ObservedFile observed_;
  NSInteger lastEvent_ = 0;
  std::optional<std::string> lastRead_;
};

class FileSystemObserverLaws : public orlftest::TemporaryFolderTest {
 protected:
  FileSystemObserverLaws() : TemporaryFolderTest(orlftest::parentInMemory()) {}
};

/// Many sequences side by side on several queues, so that none waits for the other's events.
TEST_F(FileSystemObserverLaws, LastEventFollowsTheLastChange) {
  constexpr unsigned kSequences = orlftest::kSlowdown > 1 ? 1000 : 10'000;
  constexpr unsigned kAtATime = 100;
  std::array<dispatch_queue_t, 8> queues;
  for (auto& queue : queues) queue = dispatch_queue_create("law", DISPATCH_QUEUE_SERIAL);
  for (unsigned seed = 0; seed < kSequences; seed += kAtATime) {
    std::vector<std::unique_ptr<RandomChanges>> sequences;
    for (unsigned i = 0; i < kAtATime; ++i)
      sequences.push_back(
          std::make_unique<RandomChanges>(folder_, seed + i, queues.at(i % queues.size())));
    for (bool isGoingOn = true; std::exchange(isGoingOn, false);)
      for (const auto& sequence : sequences)
        if (sequence->step()) isGoingOn = true;
    for (const auto& queue : queues) orlftest::waitForEvents(queue);
    for (const auto& sequence : sequences) ASSERT_EQ(sequence->fault(), "") << "seed " << seed;
    sequences.clear();
    for (const auto& entry : fs::directory_iterator(folder_)) fs::remove(entry);
  }
}

/// Raises the limit of open files as far as the machine lets, and puts it back.
class MoreDescriptors {
 public:
  MoreDescriptors() {
    ::getrlimit(RLIMIT_NOFILE, &before_);
    set(before_.rlim_max);
  }
  ~MoreDescriptors() { set(before_.rlim_cur); }
  MoreDescriptors(const MoreDescriptors&) = delete;
  MoreDescriptors& operator=(const MoreDescriptors&) = delete;
  static void set(rlim_t limit) {
    rlimit now{};
    ::getrlimit(RLIMIT_NOFILE, &now);
    now.rlim_cur = limit;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &now), 0);
  }
  [[nodiscard]] rlim_t most() const { return before_.rlim_max; }

 private:
  rlimit before_{};
};

std::size_t inotifyQueues() {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code code;
    if (fs::read_symlink(entry.path(), code) == "anon_inode:inotify") ++count;
  }
  return count;
}

TEST_F(FileSystemObserverLaws, TenThousandFilesAreObservedThroughOneQueue) {
  const MoreDescriptors descriptors;
  constexpr std::size_t kFiles = 10'000;
  constexpr rlim_t kOthers = 100;
  const bool isEnough = descriptors.most() >= kFiles + kOthers;
  const auto queue = dispatch_queue_create("many", DISPATCH_QUEUE_SERIAL);
  std::vector<NSInteger> last(kFiles, 0);
  std::vector<std::shared_ptr<ORLFFileSystemObserver>> observers;
  const auto pathOf = [&](std::size_t i) { return path(std::to_string(i)); };
  std::size_t started = 0;
  for (std::size_t i = 0; i < kFiles; ++i) {
    std::ofstream(pathOf(i)).close();
    observers.push_back(std::make_shared<ORLFFileSystemObserver>(
        NSURL::fileURLWithPath(pathOf(i)), queue,
        [&last, i](NSInteger event, const std::optional<NSURL>&) { last[i] = event; }));
    if (observers.back()->startObserving()) ++started;
  }
  // What does not fit is refused, and the rest goes on.
  EXPECT_EQ(started == kFiles, isEnough) << started;
  ASSERT_GT(started, 0U);
  EXPECT_EQ(inotifyQueues(), 1U);

  for (std::size_t i = 0; i < started; i += 7) orlftest::appendTo(pathOf(i));
  for (std::size_t i = 1; i < started; i += 7) fs::remove(pathOf(i));
  orlftest::waitForEvents(queue);
  dispatch_sync(queue, [&] {
    for (std::size_t i = 0; i < started; ++i)
      ASSERT_EQ(last[i], i % 7 == 0 ? 2 : i % 7 == 1 ? 3 : 1) << i;
  });
  for (const auto& observer : observers) observer->stopObserving();
  orlftest::waitForEvents(queue);
}

TEST_F(FileSystemObserverLaws, NothingIsLostWhenDescriptorsRunOut) {
  write("file", "");
  ObservedFile first(path("file"));
  ASSERT_TRUE(first.observer->startObserving());
  ObservedFile second(path("file"));
  {
    const MoreDescriptors descriptors;
    MoreDescriptors::set(0);
    EXPECT_FALSE(second.observer->startObserving());
  }
  EXPECT_TRUE(second.observer->startObserving());
  orlftest::appendTo(path("file"));
  EXPECT_EQ(first.numbers().back(), 2);
  EXPECT_EQ(second.numbers().back(), 2);
}

}  // namespace
}  // namespace ORLFoundation
