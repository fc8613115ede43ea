/// An indicator whose main thread has a clock that is moved by hand, and what it was seen to show.
#pragma once

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/tasks/progress/ORLFProgress_testing.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orlftest {

/// Writes down what it was shown.
struct Watching final : ORLFoundation::ORLFProgressIndicatorDelegate {
  void progressIndicatorDidChange(
      const std::shared_ptr<ORLFoundation::ORLFProgressIndicator>& indicator) override {
    EXPECT_TRUE(ORLFoundation::NSThread::isMainThread());
    shown.push_back(indicator->visible() ? indicator->currentValue() : -1);
    if (then) then();
  }
  std::vector<double> take() { return std::exchange(shown, {}); }
  std::vector<double> shown;
  std::function<void()> then;
};

class ProgressIndicatorTest : public testing::Test {
 protected:
  using Item = std::shared_ptr<ORLFoundation::ORLFProgressItem>;

  ProgressIndicatorTest() { indicator->setDelegate(delegate); }
  ~ProgressIndicatorTest() override {
    delegate->then = nullptr;
    for (const Item& item : all_) item->setCurrentIndicator(nullptr);
    advance(2000);
  }

  Item item(double value, double max) {
    all_.push_back(std::make_shared<ORLFoundation::ORLFProgressItem>());
    all_.back()->updateValue(value, max);
    return all_.back();
  }
  void advance(std::int64_t milliseconds) { loop.advance(milliseconds * kMillisecond); }

  VirtualMainLoop loop;
  std::shared_ptr<Watching> delegate = std::make_shared<Watching>();
  std::shared_ptr<ORLFoundation::ORLFProgressIndicator> indicator =
      std::make_shared<ORLFoundation::ORLFProgressIndicator>();

 private:
  std::vector<Item> all_;
};

}  // namespace orlftest
