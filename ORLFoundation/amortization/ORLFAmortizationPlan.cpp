
#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>

#include <ORLFoundation/amortization/internal/ORLFPlanDates.h>
#include <ORLFoundation/amortization/internal/ORLFPlanKeys.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

using namespace internal::amortization;

std::shared_ptr<ORLFAmortizationPlan> ORLFAmortizationPlan::initWithStartDate(
    std::optional<NSDate> startDate, const Segment& segment, std::optional<NSDate> endDate) {
  const NSDate start = startDate ? *startDate : NSDate::date();
  const NSDate end = endDate.value_or(NSDate::distantFuture());
  const bool ordered = !orlfIsAfter(start, end);
  ORLFConditionAssert(ordered, "[startDate compare:endDate] != NSOrderedDescending",
                      "endDate must be after startDate");
  if (!ordered) return nullptr;
  const bool hasFrequency = segment && segment->contributionFrequncy();
  ORLFConditionAssert(hasFrequency, "segment.contributionFrequncy != nil",
                      "segment.contributionFrequncy cannont be nil");
  if (!hasFrequency) return nullptr;

  auto plan = std::make_shared<ORLFAmortizationPlan>();
  auto member = copyOf(segment);
  member->setStartDate(start);
  plan->setSegments({std::move(member)});
  plan->setEndDate(end);
  return plan;
}

ORLFAmortizationPlan::ORLFAmortizationPlan() = default;
ORLFAmortizationPlan::~ORLFAmortizationPlan() = default;

const std::vector<ORLFAmortizationPlan::Segment>& ORLFAmortizationPlan::segments() const noexcept {
  return segments_;
}

void ORLFAmortizationPlan::setSegments(std::vector<Segment> segments) {
  for (const Segment& member : segments) refuseNull(member);
  const auto self = std::static_pointer_cast<ORLFAmortizationPlan>(weak_from_this().lock());
  for (const Segment& member : segments) member->setAmortizationPlan(self);
  changeValue(kSegmentsKey, [&] { segments_ = std::move(segments); });
}

const std::optional<NSDate>& ORLFAmortizationPlan::endDate() const noexcept { return endDate_; }

void ORLFAmortizationPlan::setEndDate(std::optional<NSDate> endDate) {
  changeValue(kEndDateKey, [&] { endDate_ = endDate; });
}

ORLFAmortizationPlan::Segment ORLFAmortizationPlan::firstSegment() const {
  return segments_.empty() ? nullptr : segments_.front();
}

ORLFAmortizationPlan::Segment ORLFAmortizationPlan::lastSegment() const {
  return segments_.empty() ? nullptr : segments_.back();
}

std::optional<NSDate> ORLFAmortizationPlan::planStartDate() const {
  return segments_.empty() ? std::nullopt : segments_.front()->startDate();
}

std::optional<NSDate> ORLFAmortizationPlan::planEndDate() const {
  return isBefore(endDate_, NSDate::distantFuture()) ? endDate_ : std::nullopt;
}

std::optional<NSDate> ORLFAmortizationPlan::lastIntrestingDate() const {
  if (const auto end = planEndDate()) return end;
  return segments_.empty() ? std::nullopt : segments_.back()->startDate();
}

std::string ORLFAmortizationPlan::className() const { return "ORLFAmortizationPlan"; }

const NSKeyTable& ORLFAmortizationPlan::keyTable() const {
  using Plan = ORLFAmortizationPlan;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readWrite<&Plan::segments, &Plan::setSegments>(kSegmentsKey),
          NSKey::readWrite<&Plan::endDate, &Plan::setEndDate>(kEndDateKey),
          NSKey::readOnly<&Plan::firstSegment>("firstSegment", {"segments"}),
          NSKey::readOnly<&Plan::lastSegment>("lastSegment", {"segments"}),
          NSKey::readOnly<&Plan::planStartDate>("planStartDate", {"firstSegment.startDate"}),
          NSKey::readOnly<&Plan::planEndDate>("planEndDate", {"endDate"}),
          NSKey::readOnly<&Plan::lastIntrestingDate>("lastIntrestingDate",
                                                     {"planEndDate", "lastSegment.startDate"}),
      });
  return table;
}

bool ORLFAmortizationPlan::isEqual(const NSObject* other) const {
  return isEqualAmortizationPlan(dynamic_cast<const ORLFAmortizationPlan*>(other));
}

bool ORLFAmortizationPlan::isEqualAmortizationPlan(const ORLFAmortizationPlan* other) const {
  return other && endDate_ == other->endDate_ &&
         std::ranges::equal(segments_, other->segments_, [](const auto& left, const auto& right) {
           return left->isEqual(right.get());
         });
}

NSUInteger ORLFAmortizationPlan::hash() const {
  NSUInteger hash = endDate_ ? endDate_->hash() : 0;
  for (const Segment& member : segments_) hash = hash * 31 + member->hash();
  return hash;
}

std::string ORLFAmortizationPlan::description() const {
  const NSArray members(std::vector<id>(segments_.begin(), segments_.end()));
  return members.description() + "\r" + (endDate_ ? endDate_->description() : "(null)");
}

void ORLFAmortizationPlan::refuseNull(const Segment& segment) {
  if (segment) return;
  throw NSException(NSInvalidArgumentException, "A plan holds no null segment.");
}

std::shared_ptr<NSObject> ORLFAmortizationPlan::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFAmortizationPlan>();
}

std::shared_ptr<NSObject> ORLFAmortizationPlan::copy() { return copyOfPlan(); }

std::shared_ptr<ORLFAmortizationPlan> ORLFAmortizationPlan::copyOfPlan() const {
  auto plan = newObjectAs<ORLFAmortizationPlan>();
  std::vector<Segment> members;
  for (const Segment& member : segments_) members.push_back(copyOf(member));
  plan->setSegments(std::move(members));
  plan->setEndDate(endDate_);
  return plan;
}

}  // namespace ORLFoundation
