
#include <ORLFoundation/recurrence/ORLFDateRecurrenceEnd.h>

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceKeys.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

namespace ORLFoundation {

using namespace internal::recurrence;

ORLFDateRecurrenceEnd::ORLFDateRecurrenceEnd(std::optional<NSDate> endDate,
                                             NSUInteger occurrenceCount)
    : endDate_(endDate), occurrenceCount_(occurrenceCount) {}

std::shared_ptr<ORLFDateRecurrenceEnd> ORLFDateRecurrenceEnd::initEndWithEndDate(
    std::optional<NSDate> endDate) {
  return std::make_shared<ORLFDateRecurrenceEnd>(endDate, 0);
}

std::shared_ptr<ORLFDateRecurrenceEnd> ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(
    NSUInteger occurrenceCount) {
  return std::make_shared<ORLFDateRecurrenceEnd>(std::nullopt, occurrenceCount);
}

void ORLFDateRecurrenceEnd::setEndDate(std::optional<NSDate> endDate) {
  changeValue(kEndDateKey, [&] { endDate_ = endDate; });
}

void ORLFDateRecurrenceEnd::setOccurrenceCount(NSUInteger occurrenceCount) {
  changeValue(kOccurrenceCountKey, [&] { occurrenceCount_ = occurrenceCount; });
}

bool ORLFDateRecurrenceEnd::shouldEndForDate(std::optional<NSDate> date, NSInteger count,
                                             bool backwards) const {
  ORLFConditionAssert(date.has_value() || !endDate_, "date != nil",
                      "NIL date for ORLFDateRecurrenceEnd with and end date");
  if (endDate_ && !date) return true;
  return shouldEndForDate(date.value_or(NSDate()), count, backwards);
}

bool ORLFDateRecurrenceEnd::isReachedBy(NSDate date, bool backwards) const {
  return backwards ? !orlfIsBefore(*endDate_, date) : !orlfIsAfter(*endDate_, date);
}

const NSKeyTable& ORLFDateRecurrenceEnd::keyTable() const {
  using End = ORLFDateRecurrenceEnd;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readWrite<&End::endDate, &End::setEndDate>(kEndDateKey),
       NSKey::readWrite<&End::occurrenceCount, &End::setOccurrenceCount>(kOccurrenceCountKey)});
  return table;
}

std::string ORLFDateRecurrenceEnd::className() const { return "ORLFDateRecurrenceEnd"; }

bool ORLFDateRecurrenceEnd::isEqual(const NSObject* other) const {
  const auto* end = dynamic_cast<const ORLFDateRecurrenceEnd*>(other);
  if (!end) return false;
  if (!endDate_) return end->occurrenceCount_ == occurrenceCount_;
  return end->endDate_ && end->endDate_->isEqualToDate(*endDate_);
}

NSUInteger ORLFDateRecurrenceEnd::hash() const {
  return endDate_ ? endDate_->hash() : occurrenceCount_;
}

std::shared_ptr<NSObject> ORLFDateRecurrenceEnd::copy() {
  return receiverOr([this] {
    auto copy = newObjectAs<ORLFDateRecurrenceEnd>();
    copy->endDate_ = endDate_;
    copy->occurrenceCount_ = occurrenceCount_;
    return copy;
  });
}

std::shared_ptr<NSObject> ORLFDateRecurrenceEnd::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFDateRecurrenceEnd>(endDate_, occurrenceCount_);
}

}  // namespace ORLFoundation
