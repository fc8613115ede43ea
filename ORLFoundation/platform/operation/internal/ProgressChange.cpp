#include <ORLFoundation/platform/operation/internal/ProgressChange.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace ORLFoundation::internal::operation {
namespace {

constinit std::mutex lockOfProgresses;

/// What observers see of one progress.
struct Reading {
  ProgressFraction own;
  double fraction;
};

struct ObservedKey {
  std::string_view name;
  bool (*differs)(const Reading& before, const Reading& after);
};
constexpr std::array kObservedKeys{
    ObservedKey{"completedUnitCount",
                [](const Reading& before, const Reading& after) {
                  return before.own.completed != after.own.completed;
                }},
    ObservedKey{"totalUnitCount",
                [](const Reading& before, const Reading& after) {
                  return before.own.total != after.own.total;
                }},
    ObservedKey{"indeterminate",
                [](const Reading& before, const Reading& after) {
                  return before.own.isIndeterminate() != after.own.isIndeterminate();
                }},
    ObservedKey{"finished",
                [](const Reading& before, const Reading& after) {
                  return before.own.isFinished() != after.own.isFinished();
                }},
    ObservedKey{"fractionCompleted",
                [](const Reading& before, const Reading& after) {
                  return before.fraction != after.fraction;
                }},
};

}  // namespace

std::mutex& progressLock() noexcept { return lockOfProgresses; }

void ProgressChange::collectAncestors() {
  ancestors_.clear();
  for (const NSProgress* each = &receiver_; each->tie_ == NSProgress::Tie::counting;
       each = ancestors_.back().get()) {
    auto parent = each->parent_.lock();
    if (!parent) return;
    ancestors_.push_back(std::move(parent));
  }
}

bool ProgressChange::isAnyObserved() const {
  const auto isObserved = [](const NSProgress& progress) {
    return progress.isObserved_.load(std::memory_order_relaxed);
  };
  return isObserved(receiver_) ||
         std::any_of(ancestors_.begin(), ancestors_.end(),
                     [&](const auto& progress) { return isObserved(*progress); });
}

/// A change climbs as long as it alters the fraction of the progress that it has reached.
void ProgressChange::perform() {
  if (ancestors_.empty()) return step_();
  finished_.clear();
  NSProgress* each = &receiver_;
  NSProgress::Fraction before = each->overall();
  step_();
  for (const auto& parent : ancestors_) {
    const NSProgress::Fraction after = each->overall();
    if (areEqual(before, after)) return;
    const NSProgress::Fraction parentBefore = parent->overall();
    parent->takeChild(before, after, each->pending_);
    if (after.isFinished()) finished_.push_back({parent.get(), each});
    before = parentBefore;
    each = parent.get();
  }
}

void ProgressChange::conclude(Released& released) {
  if (end_) end_();
  for (const Finish& finish : finished_) {
    const auto held = finish.parent->unfinished_.find(finish.child);
    if (held == finish.parent->unfinished_.end()) continue;
    released.push_back(std::move(held->second));
    finish.parent->unfinished_.erase(held);
  }
}

std::vector<NSProgress*> ProgressChange::affected() const {
  std::vector<NSProgress*> all{&receiver_};
  for (const auto& progress : ancestors_) all.push_back(progress.get());
  return all;
}

ProgressChange::Notices ProgressChange::performAndCompare() {
  const auto readingOf = [](const NSProgress& progress) {
    return Reading{progress.own_, progress.overall().value()};
  };
  const std::vector<NSProgress*> all = affected();
  std::vector<Reading> before;
  before.reserve(all.size());
  for (const NSProgress* progress : all) before.push_back(readingOf(*progress));
  perform();
  Notices notices;
  for (std::size_t i = 0; i < all.size(); ++i)
    for (const ObservedKey& key : kObservedKeys)
      if (key.differs(before[i], readingOf(*all[i]))) notices.push_back({all[i], key.name});
  return notices;
}

ProgressChange::Notices ProgressChange::rehearse() {
  const std::vector<NSProgress*> all = affected();
  std::vector<State> states;
  states.reserve(all.size());
  for (const NSProgress* progress : all) states.push_back({progress->own_, progress->children_});
  Notices notices = performAndCompare();
  for (std::size_t i = 0; i < all.size(); ++i) {
    all[i]->own_ = states[i].own;
    all[i]->children_ = states[i].children;
  }
  return notices;
}

void ProgressChange::tell(std::span<const Notice> notices, const Step& inside) const {
  if (notices.empty()) return inside();
  const Notice& first = notices.front();
  first.progress->changeValue(first.key, [&] { tell(notices.subspan(1), inside); });
}

void ProgressChange::make() {
  Released released;  // dies outside the lock, as the ancestors do
  Notices expected;
  {
    const std::lock_guard guard(progressLock());
    collectAncestors();
    if (!isAnyObserved()) {
      perform();
      return conclude(released);
    }
    expected = rehearse();
  }
  // Kept to the end: the notices name them, and whoever is told may let go of them.
  const auto receiver = receiver_.weak_from_this().lock();
  const auto rehearsed = ancestors_;
  Notices late;
  tell(expected, [&] {
    const std::lock_guard guard(progressLock());
    collectAncestors();
    late = performAndCompare();
    conclude(released);
  });
  std::erase_if(late, [&](const Notice& notice) {
    return std::any_of(expected.begin(), expected.end(), [&](const Notice& told) {
      return told.progress == notice.progress && told.key == notice.key;
    });
  });
  tell(late, [] {});
}

}  // namespace ORLFoundation::internal::operation
