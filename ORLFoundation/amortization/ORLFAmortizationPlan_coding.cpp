// How plans and their segments are archived. A plan and its segments refer to each other, so each
// announces itself before it reads its members.

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>

#include <ORLFoundation/amortization/internal/ORLFPlanKeys.h>
#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

template <class Value>
void encodeUnlessNil(NSCoder& coder, const Value& value, std::string_view key) {
  if (value) coder.encodeObject(value, key);
}

}  // namespace

const NSCodingClass& ORLFAmortizationPlanSegment::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFAmortizationPlanSegment>("ORLFAmortizationPlanSegment");
  return record;
}

void ORLFAmortizationPlanSegment::encodeWithCoder(NSCoder& coder) const {
  encodeUnlessNil(coder, startDate_, kStartDateKey);
  encodeUnlessNil(coder, amortizationPlan(), kAmortizationPlanKey);
  encodeUnlessNil(coder, currentPrincipal_, kCurrentPrincipalKey);
  encodeUnlessNil(coder, contribution_, kContributionKey);
  encodeUnlessNil(coder, contributionFrequncy_, kContributionFrequncyKey);
  encodeUnlessNil(coder, anualCompoundingRate_, kAnualCompoundingRateKey);
  encodeUnlessNil(coder, compoundingFrequncy_, kCompoundingFrequncyKey);
  encodeUnlessNil(coder, anualInflationRate_, kAnualInflationRateKey);
}

std::shared_ptr<ORLFAmortizationPlanSegment> ORLFAmortizationPlanSegment::initWithCoder(
    NSCoder& coder) {
  const auto decimal = [&](std::string_view key) {
    return coder.decodeObjectOfClass<NSDecimalNumber>(key);
  };
  const auto period = [&](std::string_view key) {
    return coder.decodeObjectOfClass<ORLFDateRecurrencePeriod>(key);
  };
  auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
  coder.setObjectBeingDecoded(segment);
  segment->startDate_ = coder.decodeObjectOfClass<NSDate>(kStartDateKey);
  segment->amortizationPlan_ =
      coder.decodeObjectOfClass<ORLFAmortizationPlan>(kAmortizationPlanKey);
  segment->currentPrincipal_ = decimal(kCurrentPrincipalKey);
  segment->contribution_ = decimal(kContributionKey);
  if (const auto frequency = period(kContributionFrequncyKey))
    segment->contributionFrequncy_ = frequency;
  segment->anualCompoundingRate_ = decimal(kAnualCompoundingRateKey);
  segment->compoundingFrequncy_ = period(kCompoundingFrequncyKey);
  segment->anualInflationRate_ = decimal(kAnualInflationRateKey);
  return segment;
}

const NSCodingClass& ORLFAmortizationPlan::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFAmortizationPlan>("ORLFAmortizationPlan");
  return record;
}

void ORLFAmortizationPlan::encodeWithCoder(NSCoder& coder) const {
  std::vector<id> members(segments_.begin(), segments_.end());
  coder.encodeObject(std::make_shared<NSArray>(std::move(members)), kSegmentsKey);
  encodeUnlessNil(coder, endDate_, kEndDateKey);
}

std::shared_ptr<ORLFAmortizationPlan> ORLFAmortizationPlan::initWithCoder(NSCoder& coder) {
  auto plan = std::make_shared<ORLFAmortizationPlan>();
  coder.setObjectBeingDecoded(plan);
  const id list = coder.decodeObjectOfClasses<NSArray, ORLFAmortizationPlanSegment>(kSegmentsKey);
  std::vector<Segment> segments;
  if (const auto members = list.as<NSArray>()) {
    for (const id& member : *members) segments.push_back(member.as<ORLFAmortizationPlanSegment>());
  } else if (!list.isNil()) {
    segments.push_back(nullptr);
  }
  for (const Segment& segment : segments) {
    if (segment) continue;
    coder.failWithError("A plan holds something else than segments.");
    return nullptr;
  }
  plan->setSegments(std::move(segments));
  plan->endDate_ = coder.decodeObjectOfClass<NSDate>(kEndDateKey);
  return plan;
}

}  // namespace ORLFoundation
