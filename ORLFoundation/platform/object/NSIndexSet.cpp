
#include <ORLFoundation/platform/object/NSIndexSet.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr auto kEnd = static_cast<NSUInteger>(NSNotFound);

void requireIndexes(NSRange range) {
  if (range.length <= kEnd && range.location <= kEnd - range.length) return;
  throw NSException(NSRangeException, "Range {" + std::to_string(range.location) + ", " +
                                          std::to_string(range.length) +
                                          "} exceeds maximum index value of NSNotFound - 1");
}

std::string textOf(NSRange range) {
  std::string text = std::to_string(range.location);
  if (range.length > 1) text += "-" + std::to_string(NSMaxRange(range) - 1);
  return text;
}

/// The first range that ends at or after an index.
auto firstEndingAt(const std::vector<NSRange>& ranges, NSUInteger index) {
  return std::ranges::lower_bound(ranges, index, {}, NSMaxRange);
}

}  // namespace

NSIndexSet::NSIndexSet(NSRange indexesInRange) {
  requireIndexes(indexesInRange);
  if (indexesInRange.length > 0) ranges_.push_back(indexesInRange);
}

NSUInteger NSIndexSet::count() const noexcept {
  return std::accumulate(ranges_.begin(), ranges_.end(), NSUInteger{0},
                         [](NSUInteger sum, NSRange range) { return sum + range.length; });
}

bool NSIndexSet::containsIndex(NSUInteger index) const noexcept {
  const auto range = std::ranges::upper_bound(ranges_, index, {}, NSMaxRange);
  return range != ranges_.end() && range->location <= index;
}

NSUInteger NSIndexSet::firstIndex() const noexcept {
  return ranges_.empty() ? kEnd : ranges_.front().location;
}

NSUInteger NSIndexSet::lastIndex() const noexcept {
  return ranges_.empty() ? kEnd : NSMaxRange(ranges_.back()) - 1;
}

void NSIndexSet::enumerateIndexesUsingBlock(
    const std::function<void(NSUInteger index, bool& stop)>& block) const {
  bool stop = false;
  // The block may change a mutable set: the indexes of this moment are walked.
  for (const NSRange range : std::vector<NSRange>(ranges_))
    for (NSUInteger index = range.location; index < NSMaxRange(range); ++index) {
      block(index, stop);
      if (stop) return;
    }
}

bool NSIndexSet::isEqual(const NSObject* other) const {
  const auto* set = dynamic_cast<const NSIndexSet*>(other);
  return set && set->ranges_ == ranges_;
}

NSUInteger NSIndexSet::hash() const {
  return count() * 31 + (ranges_.empty() ? 0 : firstIndex() + lastIndex());
}

std::string NSIndexSet::description() const {
  std::string text = NSObject::description();
  if (ranges_.empty()) return text + "(no indexes)";
  text += "[number of indexes: " + std::to_string(count()) + " (in " +
          std::to_string(ranges_.size()) + " ranges), indexes: (";
  for (const NSRange range : ranges_) text += textOf(range) + " ";
  text.back() = ')';
  return text + "]";
}

std::shared_ptr<NSObject> NSIndexSet::mutableCopy() {
  return std::make_shared<NSMutableIndexSet>(*this);
}

void NSMutableIndexSet::addIndex(NSUInteger index) { addIndexesInRange({index, 1}); }

void NSMutableIndexSet::addIndexesInRange(NSRange range) {
  requireIndexes(range);
  if (range.length == 0) return;
  // Ranges that overlap the new one or touch it become one with it.
  const auto first = firstEndingAt(ranges_, range.location);
  const auto last =
      std::ranges::upper_bound(first, ranges_.cend(), NSMaxRange(range), {}, &NSRange::location);
  if (first != last) {
    const NSUInteger start = std::min(range.location, first->location);
    const NSUInteger end = std::max(NSMaxRange(range), NSMaxRange(*std::prev(last)));
    range = {start, end - start};
  }
  ranges_.insert(ranges_.erase(first, last), range);
}

void NSMutableIndexSet::removeIndexesInRange(NSRange range) {
  const NSUInteger start = range.location;
  const NSUInteger end = range.length > kEnd - std::min(start, kEnd) ? kEnd : NSMaxRange(range);
  std::vector<NSRange> kept;
  for (const NSRange each : ranges_) {
    const NSUInteger eachEnd = NSMaxRange(each);
    const NSUInteger before = std::min(eachEnd, std::max(each.location, start));
    const NSUInteger after = std::max(each.location, std::min(eachEnd, end));
    if (start >= end || before >= after) {
      kept.push_back(each);
      continue;
    }
    if (before > each.location) kept.push_back({each.location, before - each.location});
    if (eachEnd > after) kept.push_back({after, eachEnd - after});
  }
  ranges_ = std::move(kept);
}

std::shared_ptr<NSObject> NSMutableIndexSet::copy() { return std::make_shared<NSIndexSet>(*this); }

}  // namespace ORLFoundation
