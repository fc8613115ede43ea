#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using Item = std::shared_ptr<ORLFProgressItem>;

/// Seconds of the stress below; ORLF_PROGRESS_STRESS_SECONDS says otherwise.
double stressSeconds() {
  const char* text = std::getenv("ORLF_PROGRESS_STRESS_SECONDS");
  return text ? std::atof(text) : 0.5;
}

/// One of the threads: everything that the tree and the indicators can do, on shared objects.
class StressThread {
 public:
  StressThread(unsigned seed, std::vector<Item>& roots,
               std::vector<std::shared_ptr<ORLFProgressIndicator>>& indicators,
               const std::shared_ptr<NSProgress>& outside)
      : random_(seed), roots_(roots), indicators_(indicators), outside_(outside) {}

  void run(const std::atomic<bool>& isOver) {
    while (!isOver) step();
    if (bound_) bound_->unbindFromProgress(outside_);
    own_.clear();
  }

  std::uint64_t steps = 0;

 private:
  void step() {
    ++steps;
    const Item& root = roots_[random_() % roots_.size()];
    const auto& indicator = indicators_[random_() % indicators_.size()];
    const Item node = own_.empty() || random_() % 3 == 0 ? root : own_[random_() % own_.size()];
    const auto value = static_cast<double>(random_() % 100);
    switch (random_() % 24) {
      case 0:
        indicator->displayProgressItem(root);
        break;
      case 1:
        indicator->removeProgressItem(root);
        break;
      case 2:
        own_.push_back(node->childProgressItemWithTotalCount(value));
        if (own_.size() > 16) own_.erase(own_.begin());
        break;
      case 3:
        node->addToIndicator();
        break;
      case 4:
        if (node->parent()) node->removeFromIndicator();
        break;
      case 5:
        node->setMessage(std::to_string(value));
        break;
      case 6:
        node->setIndeterminate(random_() % 2 == 0);
        break;
      case 7:
        node->makeChildCurrent(nullptr);
        break;
      case 8:
        outside_->setCompletedUnitCount(static_cast<std::int64_t>(random_() % 100));
        break;
      case 9:
        bindOrUnbind();
        break;
      case 10:
        sink_ = root->currentValue() + static_cast<double>(root->currentMessage().has_value()) +
                root->observerProgress()->fractionCompleted() + indicator->normalizedValue() +
                static_cast<double>(indicator->isProgressItemVisible(root));
        break;
      default:
        if (random_() % 2 == 0)
          node->updateValue(value, 100);
        else
          node->updateValueByIncrement(1);
    }
  }

  void bindOrUnbind() {
    if (bound_) {
      bound_->unbindFromProgress(outside_);
      bound_.reset();
    } else {
      bound_ = roots_.front()->childProgressItemWithTotalCount(1);
      bound_->bindToProgress(outside_);
    }
  }

  std::mt19937 random_;
  std::vector<Item>& roots_;
  std::vector<std::shared_ptr<ORLFProgressIndicator>>& indicators_;
  const std::shared_ptr<NSProgress> outside_;
  std::vector<Item> own_;
  Item bound_;
  double sink_ = 0;
};

TEST(ORLFProgressStress, StandsEightThreadsOnOneTree) {
  constexpr unsigned kThreads = 8;
  std::vector<Item> roots;
  for (int i = 0; i < 3; ++i) roots.push_back(std::make_shared<ORLFProgressItem>());
  std::vector<std::shared_ptr<ORLFProgressIndicator>> indicators{
      std::make_shared<ORLFProgressIndicator>(), std::make_shared<ORLFProgressIndicator>()};
  const auto outside = NSProgress::discreteProgressWithTotalUnitCount(100);
  std::atomic<bool> isOver{false};
  std::vector<StressThread> workers;
  for (unsigned seed = 0; seed < kThreads; ++seed)
    workers.emplace_back(seed, roots, indicators, outside);
  std::vector<std::thread> threads;
  for (StressThread& worker : workers) threads.emplace_back([&] { worker.run(isOver); });
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::duration<double>(stressSeconds());
  while (std::chrono::steady_clock::now() < end) pumpMainQueue(0.01);
  isOver = true;
  for (std::thread& thread : threads) thread.join();
  std::uint64_t steps = 0;
  for (const StressThread& worker : workers) {
    EXPECT_GT(worker.steps, 0U);
    steps += worker.steps;
  }
  RecordProperty("steps", std::to_string(steps));
  for (const Item& root : roots) {
    root->makeChildCurrent(nullptr);
    root->removeFromIndicator();
    EXPECT_EQ(root->currentIndicator(), nullptr);
  }
  for (const auto& indicator : indicators) {
    EXPECT_TRUE(indicator->progressItems().value_or(ORLFProgressIndicator::Items()).empty());
    while (indicator->displayTimer() || indicator->displayTimerCounter() != 0) pumpMainQueue(0.1);
    EXPECT_FALSE(indicator->visible());
  }
  while (pumpMainQueue(0)) {
  }
}

}  // namespace
}  // namespace ORLFoundation
