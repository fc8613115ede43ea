
#include <ORLFoundation/amortization/ORLFAmortizationPlanSegment.h>

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>
#include <ORLFoundation/amortization/internal/ORLFPlanKeys.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

bool matches(const std::shared_ptr<ORLFDateRecurrencePeriod>& left,
             const std::shared_ptr<ORLFDateRecurrencePeriod>& right) {
  return left == right || (left && left->isEqual(right.get()));
}

template <class T>
NSUInteger hashOf(const T& value) {
  return value ? value->hash() : 0;
}

template <class T>
std::string textOf(const T& value) {
  return value ? value->description() : "(null)";
}

}  // namespace

ORLFAmortizationPlanSegment::ORLFAmortizationPlanSegment()
    : contributionFrequncy_(
          std::make_shared<ORLFDateRecurrencePeriod>(ORLFDateRecurrenceFrequencyMonthly, 1)) {}

ORLFAmortizationPlanSegment::~ORLFAmortizationPlanSegment() = default;

const std::optional<NSDecimalNumber>& ORLFAmortizationPlanSegment::currentPrincipal()
    const noexcept {
  return currentPrincipal_;
}

void ORLFAmortizationPlanSegment::setCurrentPrincipal(std::optional<NSDecimalNumber> principal) {
  changeValue(kCurrentPrincipalKey, [&] { currentPrincipal_ = principal; });
}

const std::optional<NSDecimalNumber>& ORLFAmortizationPlanSegment::contribution() const noexcept {
  return contribution_;
}

void ORLFAmortizationPlanSegment::setContribution(std::optional<NSDecimalNumber> contribution) {
  changeValue(kContributionKey, [&] { contribution_ = contribution; });
}

const std::shared_ptr<ORLFDateRecurrencePeriod>& ORLFAmortizationPlanSegment::contributionFrequncy()
    const noexcept {
  return contributionFrequncy_;
}

void ORLFAmortizationPlanSegment::setContributionFrequncy(
    const std::shared_ptr<ORLFDateRecurrencePeriod>& frequency) {
  changeValue(kContributionFrequncyKey, [&] { contributionFrequncy_ = copyOf(frequency); });
}

const std::optional<NSDecimalNumber>& ORLFAmortizationPlanSegment::anualCompoundingRate()
    const noexcept {
  return anualCompoundingRate_;
}

void ORLFAmortizationPlanSegment::setAnualCompoundingRate(std::optional<NSDecimalNumber> rate) {
  changeValue(kAnualCompoundingRateKey, [&] { anualCompoundingRate_ = rate; });
}

const std::shared_ptr<ORLFDateRecurrencePeriod>& ORLFAmortizationPlanSegment::compoundingFrequncy()
    const noexcept {
  return compoundingFrequncy_;
}

void ORLFAmortizationPlanSegment::setCompoundingFrequncy(
    const std::shared_ptr<ORLFDateRecurrencePeriod>& frequency) {
  changeValue(kCompoundingFrequncyKey, [&] { compoundingFrequncy_ = copyOf(frequency); });
}

const std::optional<NSDecimalNumber>& ORLFAmortizationPlanSegment::anualInflationRate()
    const noexcept {
  return anualInflationRate_;
}

void ORLFAmortizationPlanSegment::setAnualInflationRate(std::optional<NSDecimalNumber> rate) {
  changeValue(kAnualInflationRateKey, [&] { anualInflationRate_ = rate; });
}

std::shared_ptr<ORLFAmortizationPlan> ORLFAmortizationPlanSegment::amortizationPlan() const {
  return amortizationPlan_.lock();
}

void ORLFAmortizationPlanSegment::setAmortizationPlan(
    const std::shared_ptr<ORLFAmortizationPlan>& plan) {
  changeValue(kAmortizationPlanKey, [&] { amortizationPlan_ = plan; });
}

const std::optional<NSDate>& ORLFAmortizationPlanSegment::startDate() const noexcept {
  return startDate_;
}

void ORLFAmortizationPlanSegment::setStartDate(std::optional<NSDate> date) {
  changeValue(kStartDateKey, [&] { startDate_ = date; });
}

std::string ORLFAmortizationPlanSegment::className() const { return "ORLFAmortizationPlanSegment"; }

const NSKeyTable& ORLFAmortizationPlanSegment::keyTable() const {
  using Member = ORLFAmortizationPlanSegment;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readWrite<&Member::currentPrincipal, &Member::setCurrentPrincipal>(
              kCurrentPrincipalKey),
          NSKey::readWrite<&Member::contribution, &Member::setContribution>(kContributionKey),
          NSKey::readWrite<&Member::contributionFrequncy, &Member::setContributionFrequncy>(
              kContributionFrequncyKey),
          NSKey::readWrite<&Member::anualCompoundingRate, &Member::setAnualCompoundingRate>(
              kAnualCompoundingRateKey),
          NSKey::readWrite<&Member::compoundingFrequncy, &Member::setCompoundingFrequncy>(
              kCompoundingFrequncyKey),
          NSKey::readWrite<&Member::anualInflationRate, &Member::setAnualInflationRate>(
              kAnualInflationRateKey),
          NSKey::readWrite<&Member::amortizationPlan, &Member::setAmortizationPlan>(
              kAmortizationPlanKey),
          NSKey::readWrite<&Member::startDate, &Member::setStartDate>(kStartDateKey),
      });
  return table;
}

bool ORLFAmortizationPlanSegment::isEqual(const NSObject* other) const {
  return isEqualSegment(dynamic_cast<const ORLFAmortizationPlanSegment*>(other));
}

bool ORLFAmortizationPlanSegment::isEqualSegment(const ORLFAmortizationPlanSegment* other) const {
  return other && startDate_ == other->startDate_ &&
         currentPrincipal_ == other->currentPrincipal_ && contribution_ == other->contribution_ &&
         matches(contributionFrequncy_, other->contributionFrequncy_) &&
         anualCompoundingRate_ == other->anualCompoundingRate_ &&
         matches(compoundingFrequncy_, other->compoundingFrequncy_) &&
         anualInflationRate_ == other->anualInflationRate_;
}

NSUInteger ORLFAmortizationPlanSegment::hash() const {
  NSUInteger hash = 0;
  for (const NSUInteger part :
       {hashOf(startDate_), hashOf(currentPrincipal_), hashOf(contribution_),
        hashOf(contributionFrequncy_), hashOf(anualCompoundingRate_), hashOf(compoundingFrequncy_),
        hashOf(anualInflationRate_)}) {
    hash = hash * 31 + part;
  }
  return hash;
}

std::string ORLFAmortizationPlanSegment::description() const {
  return textOf(startDate_) + ", bal: " + textOf(currentPrincipal_) +
         ", con: " + textOf(contribution_) + ", frq: " + textOf(contributionFrequncy_) +
         ", comp: " + textOf(anualCompoundingRate_) +
         ", comp freq: " + textOf(compoundingFrequncy_) +
         ", inflat: " + textOf(anualInflationRate_);
}

std::shared_ptr<NSObject> ORLFAmortizationPlanSegment::copy() {
  auto segment = newObjectAs<ORLFAmortizationPlanSegment>();
  segment->startDate_ = startDate_;
  segment->currentPrincipal_ = currentPrincipal_;
  segment->contribution_ = contribution_;
  segment->setContributionFrequncy(contributionFrequncy_);
  segment->anualCompoundingRate_ = anualCompoundingRate_;
  segment->setCompoundingFrequncy(compoundingFrequncy_);
  segment->anualInflationRate_ = anualInflationRate_;
  return segment;
}

std::shared_ptr<NSObject> ORLFAmortizationPlanSegment::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFAmortizationPlanSegment>();
}

}  // namespace ORLFoundation
