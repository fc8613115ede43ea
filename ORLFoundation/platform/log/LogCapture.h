/// Collects the lines that are logged while it lives, for tests; the sink before it comes back when
/// it dies. Captures may nest.
///
///     LogCapture log;
///     NSLog("an empty plan");
///     EXPECT_EQ(log.lines(), std::vector<std::string>{"an empty plan"});
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/NSLog.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class LogCapture {
 public:
  LogCapture()
      : sink_(NSSetLogSink, [collected = collected_](std::string_view message) {
          const std::lock_guard guard(collected->lock);
          collected->lines.emplace_back(message);
        }) {}

  /// The lines so far, in order.
  [[nodiscard]] std::vector<std::string> lines() const {
    const std::lock_guard guard(collected_->lock);
    return collected_->lines;
  }
  /// Each line once, sorted.
  [[nodiscard]] std::vector<std::string> distinctLines() const {
    std::vector<std::string> distinct = lines();
    std::ranges::sort(distinct);
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    return distinct;
  }
  /// Forgets the lines so far.
  void clear() {
    const std::lock_guard guard(collected_->lock);
    collected_->lines.clear();
  }

 private:
  struct Collected {
    std::mutex lock;
    std::vector<std::string> lines;
  };

  std::shared_ptr<Collected> collected_ = std::make_shared<Collected>();
  Replaced<NSLogSink> sink_;
};

}  // namespace ORLFoundation
