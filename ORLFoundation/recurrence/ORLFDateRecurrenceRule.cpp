
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceKeys.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

using namespace internal::recurrence;

namespace {

using Rule = ORLFDateRecurrenceRule;

template <class List>
void dropWhenEmpty(List& list) {
  if (list && list->empty()) list.reset();
}

/// Lists hold no nil.
Rule::Recurrence withoutNil(Rule::Recurrence fields) {
  if (auto& days = fields.daysOfTheWeek)
    days->erase(std::remove(days->begin(), days->end(), nullptr), days->end());
  return fields;
}

NSInteger normalizedAnchor(NSInteger anchor, NSInteger interval) {
  if (anchor < 0) return wrappedSum(wrappedSum(interval, anchor), 1);
  if (anchor == 0) return interval;
  return reducedPlace(anchor, interval);
}

bool equalLists(const Rule::DaysOfTheWeek& left, const Rule::DaysOfTheWeek& right) {
  if (!left || !right) return left.has_value() == right.has_value();
  return std::equal(
      left->begin(), left->end(), right->begin(), right->end(),
      [](const auto& one, const auto& other) { return one == other || one->isEqual(other.get()); });
}

/// A list's hash is its length, nil's is 0.
template <class List>
NSUInteger hashOf(const List& list) {
  return list ? list->size() : 0;
}

template <auto Getter>
id listUnderKey(const NSObject& object) {
  const auto& list = (static_cast<const Rule&>(object).*Getter)();
  return list ? internal::object::boxed(*list) : id();
}

template <auto Getter>
NSKey listKey(std::string_view name) {
  return {name, &listUnderKey<Getter>, nullptr, {}};
}

}  // namespace

ORLFDateRecurrenceRule::ORLFDateRecurrenceRule(ORLFDateRecurrenceFrequency frequency,
                                               NSInteger interval)
    : fields_{.frequency = frequency, .interval = interval, .anchorIndex = interval} {}

ORLFDateRecurrenceRule::ORLFDateRecurrenceRule(Recurrence recurrence)
    : fields_(withoutNil(std::move(recurrence))) {
  dropWhenEmpty(fields_.daysOfTheWeek);
  dropWhenEmpty(fields_.daysOfTheMonth);
  dropWhenEmpty(fields_.monthsOfTheYear);
  dropWhenEmpty(fields_.weeksOfTheYear);
  dropWhenEmpty(fields_.daysOfTheYear);
  dropWhenEmpty(fields_.setPositions);
  fields_.anchorIndex = normalizedAnchor(fields_.anchorIndex, fields_.interval);
}

std::shared_ptr<ORLFDateRecurrenceRule> ORLFDateRecurrenceRule::ruleWithFields(Recurrence fields) {
  auto rule = std::make_shared<ORLFDateRecurrenceRule>(fields.frequency, fields.interval);
  rule->fields_ = withoutNil(std::move(fields));
  return rule;
}

void ORLFDateRecurrenceRule::setAnchorIndex(NSInteger anchorIndex) {
  changeValue(kAnchorIndexKey, [&] { fields_.anchorIndex = anchorIndex; });
}

void ORLFDateRecurrenceRule::setAbsolute(bool absolute) {
  changeValue(kAbsoluteKey, [&] { fields_.absolute = absolute; });
}

bool ORLFDateRecurrenceRule::isSimpleRecurrence() const noexcept {
  return !fields_.daysOfTheMonth && !fields_.daysOfTheWeek && !fields_.monthsOfTheYear &&
         !fields_.weeksOfTheYear && !fields_.daysOfTheYear && !fields_.setPositions;
}

std::shared_ptr<ORLFDateRecurrenceRule> ORLFDateRecurrenceRule::copySimpleRecurrence() {
  if (isSimpleRecurrence()) return receiver();
  const Recurrence fields{.frequency = fields_.frequency,
                          .interval = fields_.interval,
                          .anchorIndex = fields_.interval};
  auto simple = newObjectAs<Rule>();
  simple->fields_ = fields;
  return simple;
}

/// The receiver as its owners hold it; for a rule on the stack, which nobody else holds, a copy.
std::shared_ptr<ORLFDateRecurrenceRule> ORLFDateRecurrenceRule::receiver() {
  return std::static_pointer_cast<Rule>(receiverOr([this] { return copy(); }));
}

const NSKeyTable& ORLFDateRecurrenceRule::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readOnly<&Rule::frequency>(kFrequencyKey),
       NSKey::readOnly<&Rule::interval>(kIntervalKey),
       NSKey::readWrite<&Rule::anchorIndex, &Rule::setAnchorIndex>(kAnchorIndexKey),
       NSKey::readWrite<&Rule::absolute, &Rule::setAbsolute>(kAbsoluteKey),
       listKey<&Rule::daysOfTheWeek>(kDaysOfTheWeekKey),
       listKey<&Rule::daysOfTheMonth>(kDaysOfTheMonthKey),
       listKey<&Rule::monthsOfTheYear>(kMonthsOfTheYearKey),
       listKey<&Rule::weeksOfTheYear>(kWeeksOfTheYearKey),
       listKey<&Rule::daysOfTheYear>(kDaysOfTheYearKey),
       listKey<&Rule::setPositions>(kSetPositionsKey)});
  return table;
}

std::string ORLFDateRecurrenceRule::className() const { return "ORLFDateRecurrenceRule"; }

bool ORLFDateRecurrenceRule::isEqual(const NSObject* other) const {
  const auto* rule = dynamic_cast<const Rule*>(other);
  if (!rule) return false;
  const Recurrence& theirs = rule->fields_;
  return theirs.interval == fields_.interval && theirs.anchorIndex == fields_.anchorIndex &&
         theirs.frequency == fields_.frequency &&
         equalLists(fields_.daysOfTheWeek, theirs.daysOfTheWeek) &&
         theirs.daysOfTheMonth == fields_.daysOfTheMonth &&
         theirs.daysOfTheYear == fields_.daysOfTheYear &&
         theirs.monthsOfTheYear == fields_.monthsOfTheYear &&
         theirs.weeksOfTheYear == fields_.weeksOfTheYear &&
         theirs.setPositions == fields_.setPositions;
}

NSUInteger ORLFDateRecurrenceRule::hash() const {
  return static_cast<NSUInteger>(fields_.interval) + static_cast<NSUInteger>(fields_.anchorIndex) +
         static_cast<NSUInteger>(fields_.frequency) + hashOf(fields_.daysOfTheWeek) +
         hashOf(fields_.daysOfTheMonth) + hashOf(fields_.daysOfTheYear) +
         hashOf(fields_.monthsOfTheYear) + hashOf(fields_.weeksOfTheYear) +
         hashOf(fields_.setPositions);
}

std::shared_ptr<NSObject> ORLFDateRecurrenceRule::copy() {
  auto copy = newObjectAs<Rule>();
  copy->fields_ = fields_;
  return copy;
}

std::shared_ptr<NSObject> ORLFDateRecurrenceRule::newObjectOfReceiversClass() const {
  return std::make_shared<Rule>(fields_.frequency, fields_.interval);
}

}  // namespace ORLFoundation
