
#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>

#include <ORLFoundation/amortization/internal/ORLFPlanDates.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <cstddef>
#include <iterator>
#include <utility>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

using Segment = ORLFAmortizationPlan::Segment;
using Segments = std::vector<Segment>;

/// Where a range lies among the members: the index behind the last member that starts before it,
/// and the last member that starts within it.
struct Place {
  std::optional<std::size_t> insertion;
  std::optional<std::size_t> lastCovered;
};

Place placeOfRange(const Segments& members, std::optional<NSDate> start, NSDate end) {
  Place place;
  for (std::size_t index = 0; index < members.size(); ++index) {
    const auto& memberStart = members[index]->startDate();
    if (isAfter(start, memberStart)) {
      place.insertion = index + 1;
    } else if (isBefore(end, memberStart)) {
      break;
    } else {
      place.lastCovered = index;
    }
  }
  return place;
}

/// Takes members out of a list; they lose their start and their plan.
void removeMembers(Segments& members, std::size_t first, std::size_t firstToKeep) {
  if (first >= firstToKeep) return;
  const auto begin = std::next(members.begin(), static_cast<std::ptrdiff_t>(first));
  const auto end = std::next(members.begin(), static_cast<std::ptrdiff_t>(firstToKeep));
  for (auto member = begin; member != end; ++member) {
    (*member)->setStartDate(std::nullopt);
    (*member)->setAmortizationPlan(nullptr);
  }
  members.erase(begin, end);
}

/// Clears a range of the members that it covers; one that runs past the range then starts at its
/// end.
void clearRange(Segments& members, const Place& place, NSDate end, std::optional<NSDate> planEnd) {
  const std::size_t covered = *place.lastCovered;
  const auto next = covered + 1 < members.size() ? members[covered + 1]->startDate() : planEnd;
  const std::size_t firstToKeep = isAfter(next, end) ? covered : covered + 1;
  if (firstToKeep < members.size() && isAfter(end, members[firstToKeep]->startDate())) {
    members[firstToKeep]->setStartDate(end);
  }
  removeMembers(members, place.insertion.value_or(0), firstToKeep);
}

/// A stretch that carries the balance on unchanged.
Segment makeFiller(const std::shared_ptr<ORLFDateRecurrencePeriod>& frequency,
                   std::optional<NSDate> start = std::nullopt) {
  auto filler = std::make_shared<ORLFAmortizationPlanSegment>();
  filler->setContribution(NSDecimalNumber::zero());
  filler->setContributionFrequncy(frequency);
  filler->setStartDate(start);
  return filler;
}

/// Puts a member behind those before `index`, with all later ones removed when it is the last of
/// the plan, and behind a filler when it starts after the plan's end.
void insertAt(Segments& members, std::size_t index, const Segment& member, bool isLast,
              std::optional<NSDate> planEnd) {
  ORLFConditionAssert(index <= members.size(), "insertionIndex <= segments.count",
                      "Should never be insertionIndex > segments.count");
  if (isLast) removeMembers(members, index, members.size());
  const bool leavesGap =
      !isLast && index == members.size() && isAfter(member->startDate(), planEnd);
  if (leavesGap) members.push_back(makeFiller(member->contributionFrequncy(), planEnd));
  const std::size_t position = leavesGap ? index + 1 : index;
  members.insert(std::next(members.begin(), static_cast<std::ptrdiff_t>(position)), member);
}

}  // namespace

void ORLFAmortizationPlan::setPlanSegment(const Segment& segment,
                                          std::optional<NSDate> fromStartDate,
                                          std::optional<NSDate> toEndDate, bool lastSegmentOfPlan) {
  refuseNull(segment);
  const NSDate end = toEndDate.value_or(NSDate::distantFuture());
  auto member = copyOf(segment);
  member->setStartDate(fromStartDate);

  Segments members = segments_;
  const Place place = placeOfRange(members, fromStartDate ? fromStartDate : planStartDate(), end);
  if (place.lastCovered) clearRange(members, place, end, endDate_);
  if (place.insertion) {
    insertAt(members, *place.insertion, member, lastSegmentOfPlan, endDate_);
  } else {
    if (isBefore(end, planStartDate()))
      members.insert(members.begin(), makeFiller(member->contributionFrequncy(), end));
    members.insert(members.begin(), member);
  }
  setEndDate(lastSegmentOfPlan || !isAfter(endDate_, end) ? end : endDate_);
  setSegments(std::move(members));
}

// The trim looks for the member whose start moves as if those before it left the plan, but they
// stay; at the other end nothing but the plan's end moves. Required.
void ORLFAmortizationPlan::trimPlanSegmentsToStartDate(std::optional<NSDate> startDate,
                                                       std::optional<NSDate> afterEndDate) {
  if (startDate && afterEndDate && !isBefore(startDate, afterEndDate)) return;
  if (isAfter(startDate, planStartDate())) {
    std::size_t first = 0;
    while (first + 1 < segments_.size() &&
           !isBefore(segments_[first + 1]->startDate(), startDate)) {
      ++first;
    }
    segments_[first]->setStartDate(startDate);
  }
  if (isAfter(afterEndDate, endDate_)) setEndDate(afterEndDate);
}

std::shared_ptr<ORLFAmortizationPlan>
ORLFAmortizationPlan::amortizationPlanByMergingWithAmortizationPlan(
    const ORLFAmortizationPlan& other) const {
  auto plan = copyOfPlan();
  for (std::size_t index = 0; index < other.segments_.size(); ++index) {
    const bool isLast = index + 1 == other.segments_.size();
    plan->setPlanSegment(other.segments_[index], other.segments_[index]->startDate(),
                         isLast ? other.endDate_ : other.segments_[index + 1]->startDate(), false);
  }
  return plan;
}

std::shared_ptr<ORLFAmortizationPlan> ORLFAmortizationPlan::amortizationPlanWithStartDate(
    std::optional<NSDate> startDate, std::optional<NSDate> endDate) const {
  auto plan = copyOfPlan();
  plan->trimPlanSegmentsToStartDate(startDate, endDate);
  const Segment first = plan->firstSegment();
  const auto frequency = first ? first->contributionFrequncy() : nullptr;
  if (isAfter(plan->planStartDate(), startDate)) {
    plan->setPlanSegment(makeFiller(frequency), startDate, plan->planStartDate(), false);
  }
  if (isBefore(plan->endDate(), endDate)) {
    plan->setPlanSegment(makeFiller(frequency), plan->endDate(), endDate, true);
  }
  return plan;
}

}  // namespace ORLFoundation
