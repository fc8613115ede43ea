#include <ORLFoundation/platform/operation/NSProgress.h>

#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/operation/internal/ProgressChange.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <limits>
#include <mutex>
#include <utility>

namespace ORLFoundation {

using internal::operation::ProgressChange;
using internal::operation::progressLock;

std::shared_ptr<NSProgress> NSProgress::discreteProgressWithTotalUnitCount(std::int64_t unitCount) {
  return std::make_shared<NSProgress>(unitCount);
}

NSProgress::NSProgress(std::int64_t totalUnitCount) : own_{0, totalUnitCount} {}

std::int64_t NSProgress::totalUnitCount() const {
  const std::lock_guard guard(progressLock());
  return own_.total;
}

// An equal count changes nothing in the tree and tells nobody.
void NSProgress::setTotalUnitCount(std::int64_t value) {
  if (totalUnitCount() == value) return;
  ProgressChange(*this, [this, value] { setOwn({own_.completed, value}); }).make();
}

std::int64_t NSProgress::completedUnitCount() const {
  const std::lock_guard guard(progressLock());
  return own_.completed;
}

void NSProgress::setCompletedUnitCount(std::int64_t value) {
  if (completedUnitCount() == value) return;
  ProgressChange(*this, [this, value] { own_.completed = value; }).make();
}

std::optional<std::string> NSProgress::localizedDescription() const {
  const std::lock_guard guard(progressLock());
  return localizedDescription_;
}

void NSProgress::setLocalizedDescription(std::optional<std::string> value) {
  if (localizedDescription() == value) return;
  const auto held = weak_from_this().lock();  // An observer may let go of the last that holds it.
  changeValue("localizedDescription", [&] {
    const std::lock_guard guard(progressLock());
    localizedDescription_.swap(value);
  });
}

bool NSProgress::isIndeterminate() const {
  const std::lock_guard guard(progressLock());
  return own_.isIndeterminate();
}

bool NSProgress::isFinished() const {
  const std::lock_guard guard(progressLock());
  return own_.isFinished();
}

double NSProgress::fractionCompleted() const {
  const std::lock_guard guard(progressLock());
  return overall().value();
}

NSProgress::Fraction NSProgress::overall() const noexcept { return sumOf(own_, children_); }

/// The children's part is kept in parts of the total.
void NSProgress::setOwn(Fraction own) noexcept {
  if (own_.total > 0 && own.total != own_.total)
    children_ = productOf(children_, {own_.total, own.total});
  own_ = own;
}

/// What a child cannot tell counts for nothing.
void NSProgress::takeChild(Fraction before, Fraction after, std::int64_t pending) noexcept {
  const Fraction share{pending, own_.total};
  if (!before.isIndeterminate()) children_ = differenceOf(children_, productOf(share, before));
  if (!after.isIndeterminate()) children_ = sumOf(children_, productOf(share, after));
  if (!after.isFinished() || pending == 0) return;
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  own_.completed =
      internal::base::checkedSum(own_.completed, pending).value_or(pending > 0 ? kMost : kLeast);
  children_ = differenceOf(children_, productOf(share, after));
}

void NSProgress::reserve(NSProgress& child, std::int64_t pending) {
  const auto self = std::static_pointer_cast<NSProgress>(weak_from_this().lock());
  if (!self)
    throw NSException(NSInvalidArgumentException,
                      "only a progress held by a shared pointer can have children");
  std::vector<std::shared_ptr<NSProgress>> ancestors;  // let go after the lock
  const std::lock_guard guard(progressLock());
  if (child.tie_ != Tie::none)
    throw NSException(NSInvalidArgumentException, "the progress has a parent already");
  for (NSProgress* each = this; each; each = ancestors.back().get()) {
    if (each == &child)
      throw NSException(NSInvalidArgumentException,
                        "a progress cannot be the child of itself or of its descendant");
    ancestors.push_back(each->parent_.lock());
  }
  child.tie_ = Tie::reserved;
  child.parent_ = self;
  child.pending_ = pending;
}

void NSProgress::addChild(const std::shared_ptr<NSProgress>& child,
                          std::int64_t withPendingUnitCount) {
  if (!child) throw NSException(NSInvalidArgumentException, "the child of a progress is nil");
  reserve(*child, withPendingUnitCount);
  ProgressChange(
      *this,
      [this, &child, withPendingUnitCount] {
        takeChild({}, child->overall(), withPendingUnitCount);
      },
      [this, &child] {
        child->tie_ = Tie::counting;
        if (!child->overall().isFinished()) unfinished_.emplace(child.get(), child);
      })
      .make();
}

const NSKeyTable& NSProgress::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readWrite<&NSProgress::totalUnitCount, &NSProgress::setTotalUnitCount>(
              "totalUnitCount"),
          NSKey::readWrite<&NSProgress::completedUnitCount, &NSProgress::setCompletedUnitCount>(
              "completedUnitCount"),
          NSKey::readWrite<&NSProgress::localizedDescription, &NSProgress::setLocalizedDescription>(
              "localizedDescription"),
          NSKey::readOnly<&NSProgress::isIndeterminate>("indeterminate"),
          NSKey::readOnly<&NSProgress::isFinished>("finished"),
          NSKey::readOnly<&NSProgress::fractionCompleted>("fractionCompleted"),
      });
  return table;
}

std::vector<std::string> NSProgress::keyPathsForValuesAffectingValueForKey(
    std::string_view key) const {
  isObserved_.store(true, std::memory_order_relaxed);
  return NSObject::keyPathsForValuesAffectingValueForKey(key);
}

}  // namespace ORLFoundation
