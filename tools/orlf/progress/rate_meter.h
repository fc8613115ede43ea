/// How fast a value grows, over the last seconds.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

namespace orlftool {

class RateMeter {
 public:
  /// A value at an instant in nanoseconds. One that falls begins the measurement anew.
  void note(std::int64_t now, double value) {
    if (!samples_.empty() && !(value >= samples_.back().value)) samples_.clear();
    if (samples_.empty() || now - samples_.back().at >= kStep) samples_.push_back({now, value});
    while (samples_.size() > 2 && now - samples_.front().at > kSpan) samples_.pop_front();
    latest_ = {now, value};
  }

  /// Units a second; nil before a half second has been seen.
  [[nodiscard]] std::optional<double> rate() const {
    if (samples_.empty() || latest_.at - samples_.front().at < kLeast) return std::nullopt;
    const auto seconds = static_cast<double>(latest_.at - samples_.front().at) / 1e9;
    return (latest_.value - samples_.front().value) / seconds;
  }

 private:
  static constexpr std::int64_t kStep = 100'000'000;
  static constexpr std::int64_t kLeast = 500'000'000;
  static constexpr std::int64_t kSpan = 3'000'000'000;
  struct Sample {
    std::int64_t at = 0;
    double value = 0;
  };

  std::deque<Sample> samples_;
  Sample latest_;
};

}  // namespace orlftool
