// Laws of the queue over random schedules, on real threads that nothing holds back.
#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr unsigned kSchedules = orlftest::kSlowdown > 1 ? 1'000 : 10'000;

enum class Kind { plain, barrier, fence };

/// What became of one operation. Moments are numbers of one count for the whole schedule; 0 is
/// never.
struct Fate {
  Kind kind = Kind::plain;
  std::size_t call = 0;  // Which addition brought it: those of a batch share one.
  std::string instance;
  std::string group;
  std::shared_ptr<NSOperation> operation;
  std::atomic<int> runs{0}, completions{0};
  std::atomic<int> began{0}, ended{0};
  std::atomic<bool> wasFinished{false};
  bool mayBeCancelled = false;  // Somebody has asked for it.
};

class Recorded final : public NSOperation, public ORLFSingleInstanceOperation {
 public:
  Recorded(Fate& fate, std::atomic<int>& moments, unsigned work)
      : fate_(fate), moments_(moments), work_(work) {}
  void main() override {
    ++fate_.runs;
    fate_.began = ++moments_;
    for (unsigned i = 0; i < work_; ++i) std::this_thread::yield();
    fate_.ended = ++moments_;
  }
  std::optional<std::string> enqueuedSingleInstanceID() const override {
    return fate_.instance.empty() ? std::nullopt : std::optional(fate_.instance);
  }

 private:
  Fate& fate_;
  std::atomic<int>& moments_;
  const unsigned work_;
};

/// Additions, batches, fences and cancels as the seed tells, played to the end.
class Schedule {
 public:
  explicit Schedule(unsigned seed) : random_(seed), fates_(4 + random_() % 9) {}

  void play() {
    while (next_ < fates_.size()) addSome();
    queue_->waitUntilAllOperationsAreFinished();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (unfinishedCompletions() > 0 && std::chrono::steady_clock::now() < deadline)
      std::this_thread::yield();
  }
  /// What is wrong; "" for nothing.
  [[nodiscard]] std::string faults() const {
    std::string all;
    for (std::size_t i = 0; i < fates_.size(); ++i) {
      const std::string fault = faultOf(fates_[i]);
      if (!fault.empty()) all += "operation " + std::to_string(i) + " " + fault + "; ";
      for (std::size_t j = 0; j < fates_.size(); ++j)
        if (isOutOfOrder(fates_[i], fates_[j]))
          all += std::to_string(j) + " began before " + std::to_string(i) + " had ended; ";
    }
    return all + slipped_;
  }

 private:
  [[nodiscard]] bool chance(unsigned percent) { return random_() % 100 < percent; }

  void addSome() {
    ++call_;
    if (chance(15)) return addFence();
    if (chance(25)) return addBatch();
    Fate& fate = make();
    const auto done = [&fate](const auto&, bool wasFinished) {
      fate.wasFinished = wasFinished;
      ++fate.completions;
    };
    if (chance(70)) fate.group = oneOf('G');
    queue_->addOperation(fate.operation, fate.group, done);
    expectOlderInstancesCancelled(fate);
    if (chance(12)) cancelGroup(oneOf('G'));
    if (chance(8)) {
      Fate& cancelled = fates_[random_() % next_];
      cancelled.mayBeCancelled = cancelled.kind != Kind::fence;
      if (cancelled.mayBeCancelled) cancelled.operation->cancel();
    }
  }
  [[nodiscard]] std::string oneOf(char first) {
    return std::string(1, static_cast<char>(first + static_cast<char>(random_() % 2)));
  }
  /// What is told to be cancelled has ended, or has its flag from now on.
  void expectCancelled(Fate& fate, const char* why) {
    fate.mayBeCancelled = true;
    if (!fate.operation->isFinished() && !fate.operation->isCancelled())
      slipped_ += std::string("one slipped through a ") + why + "; ";
  }
  void cancelGroup(const std::string& group) {
    queue_->cancelAllOperationsForGroup(group);
    for (std::size_t i = 0; i < next_; ++i)
      if (fates_[i].group == group) expectCancelled(fates_[i], "cancel");
  }
  void expectOlderInstancesCancelled(const Fate& newest) {
    for (std::size_t i = 0; i < next_; ++i) {
      const bool isOlder = fates_[i].call < newest.call;
      if (isOlder && !newest.instance.empty() && fates_[i].instance == newest.instance)
        expectCancelled(fates_[i], "newer instance");
    }
  }
  void addFence() {
    Fate& fate = fates_[next_++];
    fate.kind = Kind::fence;
    fate.call = call_;
    fate.operation = std::make_shared<NSOperation>();  // The queue's own is not to be had.
    fate.completions = 1;
    fate.wasFinished = true;
    queue_->pauseQueueWithBlock([this, &fate] {
      ++fate.runs;
      fate.began = ++moments_;
      fate.ended = ++moments_;
    });
  }
  void addBatch() {
    NSOperationQueue::Operations batch;
    for (std::size_t left = 1 + random_() % 4; left > 0 && next_ < fates_.size(); --left) {
      Fate& fate = make();
      fate.operation->setCompletionBlock([&fate] {
        fate.wasFinished = !fate.operation->isCancelled();
        ++fate.completions;
      });
      batch.push_back(fate.operation);
    }
    const std::size_t end = next_;
    queue_->addOperations(batch, chance(20));
    for (std::size_t i = end - batch.size(); i < end; ++i) expectOlderInstancesCancelled(fates_[i]);
  }
  Fate& make() {
    Fate& fate = fates_[next_++];
    fate.call = call_;
    if (chance(30)) fate.instance = oneOf('a');
    fate.operation = std::make_shared<Recorded>(fate, moments_, random_() % 3);
    if (chance(15)) {
      fate.kind = Kind::barrier;
      orlfSetIsBarrierOperation(*fate.operation, true);
    }
    return fate;
  }

  /// A completion has come to its end when the group is gone.
  [[nodiscard]] long unfinishedCompletions() const {
    return std::ranges::count_if(fates_, [](const Fate& fate) {
      return fate.completions == 0 || orlfGroupID(*fate.operation);
    });
  }
  /// An operation that was not cancelled waits for the fences and barriers of earlier calls; a
  /// fence waits for all of them; nothing else waits.
  [[nodiscard]] static bool isOutOfOrder(const Fate& earlier, const Fate& later) {
    if (earlier.call >= later.call || later.operation->isCancelled()) return false;
    if (earlier.began == 0 || later.began == 0) return false;
    const bool isOrdered = earlier.kind != Kind::plain || later.kind == Kind::fence;
    return isOrdered && earlier.ended > later.began;
  }
  [[nodiscard]] std::string faultOf(const Fate& fate) const {
    if (fate.completions != 1) return "completed " + std::to_string(fate.completions) + " times";
    if (fate.operation->isCancelled() && !fate.mayBeCancelled) return "was cancelled by nobody";
    if (fate.wasFinished == fate.operation->isCancelled()) return "completed with the wrong answer";
    if (fate.runs > 1) return "ran twice";
    if (fate.runs == 0 && !fate.operation->isCancelled()) return "never ran";
    if (fate.runs == 1 && fate.ended == 0) return "began and did not end";
    if (orlfGroupID(*fate.operation)) return "kept its group";
    return {};
  }
  std::mt19937 random_;
  std::atomic<int> moments_{0};
  std::vector<Fate> fates_;
  std::string slipped_;
  std::size_t next_ = 0;
  std::size_t call_ = 0;
  const std::shared_ptr<ORLFOperationQueue> queue_ = std::make_shared<ORLFOperationQueue>();
};

TEST(ORLFOperationQueue, KeepsItsLawsOverRandomSchedules) {
  for (unsigned seed = 0; seed < kSchedules; ++seed) {
    Schedule schedule(seed);
    schedule.play();
    ASSERT_EQ(schedule.faults(), "") << "seed " << seed;
  }
}

}  // namespace
}  // namespace ORLFoundation
