/// Progress of a piece of work, counted in whole units of a total, and of its parts: each child
/// stands for some of its parent's units, and what is done of the child counts as that share of
/// them.
///
///     const auto whole = NSProgress::discreteProgressWithTotalUnitCount(10);
///     const auto part = NSProgress::discreteProgressWithTotalUnitCount(4);
///     whole->addChild(part, 5);
///     part->setCompletedUnitCount(2);
///     EXPECT_EQ(whole->fractionCompleted(), 0.25);    // half of five of ten
///     part->setCompletedUnitCount(4);
///     EXPECT_EQ(whole->completedUnitCount(), 5);      // a child that ends hands over its units
///
/// The values can be observed under their names ("indeterminate" and "finished" without "is").
/// Observers are told of changes only, those of the ancestors too, inside the call that makes the
/// change and on its thread, while no lock of this class is held; they may let go of what changes.
/// Any thread may call everything;
/// observers that two threads' changes call at a time see the later state, one of them twice.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/operation/internal/ProgressFraction.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

namespace internal::operation {
class ProgressChange;
}  // namespace internal::operation

class NSProgress : public NSObject {
 public:
  /// `discreteProgressWithTotalUnitCount:`  Nothing of the total is done, and it has no parent.
  [[nodiscard]] static std::shared_ptr<NSProgress> discreteProgressWithTotalUnitCount(
      std::int64_t unitCount);
  explicit NSProgress(std::int64_t totalUnitCount);

  /// `totalUnitCount`, `setTotalUnitCount:`  Below 0 while nobody knows how much there is to do.
  /// Another total lets the children keep their units: five of ten become five of twenty. Children
  /// that are there when the total goes below 0 leave the fraction indeterminate, at 0, when it
  /// comes back.
  [[nodiscard]] std::int64_t totalUnitCount() const;
  void setTotalUnitCount(std::int64_t value);
  /// `completedUnitCount`, `setCompletedUnitCount:`  Units done at this level, with those of the
  /// children that have finished. It may pass the total.
  [[nodiscard]] std::int64_t completedUnitCount() const;
  void setCompletedUnitCount(std::int64_t value);
  /// `localizedDescription`, `setLocalizedDescription:`  A text for the user; nil until it is set.
  [[nodiscard]] std::optional<std::string> localizedDescription() const;
  void setLocalizedDescription(std::optional<std::string> value);

  /// `isIndeterminate`  A count below 0, or 0 of 0: no fraction can be told.
  [[nodiscard]] bool isIndeterminate() const;
  /// `isFinished`  All units of this level are done, and there are some.
  [[nodiscard]] bool isFinished() const;
  /// `fractionCompleted`  This level's units with the children's share of theirs, in parts of the
  /// total; 0 while the sum is indeterminate or below 0, above 1 where more than all is done.
  [[nodiscard]] double fractionCompleted() const;

  /// `addChild:withPendingUnitCount:`  The child's fraction counts for so many of the receiver's
  /// units from now on, what it has done already included. With each change that leaves it finished
  /// the units are added to `completedUnitCount`, and its fraction counts no more until it changes
  /// again. The receiver holds the child until that has finished; the child holds the receiver
  /// weakly. A child has one parent for good: a second one, nil, and a child that is an ancestor or
  /// the receiver itself raise `NSInvalidArgumentException`.
  void addChild(const std::shared_ptr<NSProgress>& child, std::int64_t withPendingUnitCount);

  [[nodiscard]] std::string className() const override { return "NSProgress"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;
  /// Asked whenever somebody begins to observe a key: changes are told from then on.
  [[nodiscard]] std::vector<std::string> keyPathsForValuesAffectingValueForKey(
      std::string_view key) const override;

 private:
  friend class internal::operation::ProgressChange;
  using Fraction = internal::operation::ProgressFraction;
  /// A child counts from the moment at which its parent has taken what it has done so far.
  enum class Tie : std::uint8_t { none, reserved, counting };

  [[nodiscard]] Fraction overall() const noexcept;
  void setOwn(Fraction own) noexcept;
  void takeChild(Fraction before, Fraction after, std::int64_t pending) noexcept;
  void reserve(NSProgress& child, std::int64_t pending);

  // The process-wide lock of progresses guards these.
  Fraction own_;
  Fraction children_;
  std::weak_ptr<NSProgress> parent_;
  std::int64_t pending_ = 0;
  Tie tie_ = Tie::none;
  std::map<const NSProgress*, std::shared_ptr<NSProgress>> unfinished_;
  std::optional<std::string> localizedDescription_;

  mutable std::atomic<bool> isObserved_{false};
};

}  // namespace ORLFoundation
