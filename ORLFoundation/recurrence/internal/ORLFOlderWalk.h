/// The older enumeration, apart from the main one on purpose: it steps from a base that an absolute
/// rule's anchor sets, looks back from each step for the dates that match the rule's patterns, and
/// picks among them by position.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <boost/container/small_vector.hpp>
#include <optional>

namespace ORLFoundation::internal::recurrence {

class ORLFOlderWalk {
 public:
  /// What is given must outlive the walk.
  ORLFOlderWalk(const ORLFDateRecurrenceRule& rule,
                const ORLFDateRecurrenceRule::EnumerateDatesRefernceDate& arguments,
                ORLFDateRecurrenceBlock usingBlock);

  void run();

 private:
  [[nodiscard]] std::optional<NSDate> base() const;
  [[nodiscard]] std::optional<NSDate> dateOfPeriod(NSDate base, NSInteger number) const noexcept;
  [[nodiscard]] bool canPickFrom(NSDate start) const;
  void collectPeriod(NSDate period);
  [[nodiscard]] bool isPicked(std::size_t index) const noexcept;
  bool deliver();

  const ORLFDateRecurrenceRule& rule_;
  const ORLFDateRecurrenceRule::EnumerateDatesRefernceDate& arguments_;
  ORLFDateRecurrenceBlock usingBlock_;
  std::optional<ORLFDateRecurrenceRule::WorkingSet> patterns_;
  NSCalendarUnit unit_;
  boost::container::small_vector<NSDate, 16> dates_;
  NSUInteger delivered_ = 0;
  bool stop_ = false;
};

}  // namespace ORLFoundation::internal::recurrence
