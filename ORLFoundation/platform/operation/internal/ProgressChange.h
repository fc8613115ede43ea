/// One change of a progress with all that follows from it in its ancestors, told to observers.
///
/// Observers are called before and after a change, and may call any progress: no lock is held then.
/// So a change that somebody observes is rehearsed first, to know what it changes, told of, made,
/// and told again. What another thread changed in between makes a notice more, never one less.
#pragma once

#include <ORLFoundation/platform/operation/NSProgress.h>

#include <boost/container/small_vector.hpp>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::operation {

/// Guards the counts and the ties of all progresses: a change reaches up a tree at once.
[[nodiscard]] std::mutex& progressLock() noexcept;

class ProgressChange {
 public:
  using Step = std::function<void()>;

  /// `step` changes the receiver's own state under the lock; it may run twice, on the same state.
  /// `end` runs under the lock once, behind the last step.
  explicit ProgressChange(NSProgress& receiver, Step step, Step end = nullptr)
      : receiver_(receiver), step_(std::move(step)), end_(std::move(end)) {}

  void make();

 private:
  struct Notice {
    NSProgress* progress;
    std::string_view key;
  };
  struct State {
    NSProgress::Fraction own;
    NSProgress::Fraction children;
  };
  struct Finish {
    NSProgress* parent;
    const NSProgress* child;
  };
  using Notices = std::vector<Notice>;
  using Released = std::vector<std::shared_ptr<NSProgress>>;

  void collectAncestors();
  [[nodiscard]] bool isAnyObserved() const;
  void perform();
  /// Behind the last `perform`: who holds children that have finished lets go of them.
  void conclude(Released& released);
  [[nodiscard]] std::vector<NSProgress*> affected() const;
  [[nodiscard]] Notices rehearse();
  [[nodiscard]] Notices performAndCompare();
  void tell(std::span<const Notice> notices, const Step& inside) const;

  NSProgress& receiver_;
  const Step step_;
  const Step end_;
  boost::container::small_vector<std::shared_ptr<NSProgress>, 4> ancestors_;
  boost::container::small_vector<Finish, 4> finished_;
};

}  // namespace ORLFoundation::internal::operation
