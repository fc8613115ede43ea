/// An item on an indicator that writes down which notices reach it.
#pragma once

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/tasks/progress/ORLFProgress_testing.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

/// A root on an indicator, and the operations that reach it since they were asked for last, without
/// "progress", "Change" and "ForItem:".
class ProgressItemTest : public testing::Test {
 protected:
  ProgressItemTest() {
    indicator->displayProgressItem(root);
    calls.clear();
  }
  ~ProgressItemTest() override { root->setCurrentIndicator(nullptr); }

  std::vector<std::string> take() { return std::exchange(calls, {}); }
  [[nodiscard]] static std::int64_t units(const ORLFoundation::ORLFProgressItem& item) {
    return item.observerProgress()->completedUnitCount();
  }
  [[nodiscard]] static std::int64_t total(const ORLFoundation::ORLFProgressItem& item) {
    return item.observerProgress()->totalUnitCount();
  }

  VirtualMainLoop loop;
  std::vector<std::string> calls;
  std::shared_ptr<RecordingIndicator> indicator = std::make_shared<RecordingIndicator>(
      [this](RecordingIndicator&, const std::string& operation, const auto& item) {
        EXPECT_EQ(item, root);
        const bool isValues = operation.starts_with("progressValues");
        const bool isWill = operation.find("Will") != operation.npos;
        calls.push_back(std::string(isValues ? "values " : "current ") + (isWill ? "will" : "did"));
      });
  std::shared_ptr<ORLFoundation::ORLFProgressItem> root =
      std::make_shared<ORLFoundation::ORLFProgressItem>();
};

}  // namespace orlftest
