
#include <ORLFoundation/platform/text/NSAttributedString.h>

#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSDictionary> immutable(const std::shared_ptr<NSDictionary>& attributes) {
  return attributes ? copyOf(attributes) : std::make_shared<NSDictionary>();
}

NSRange intersection(NSRange range, NSUInteger begin, NSUInteger end) {
  const NSUInteger first = std::max(range.location, begin);
  return {first, std::min(NSMaxRange(range), end) - first};
}

}  // namespace

NSAttributedString::NSAttributedString(std::string_view string,
                                       const std::shared_ptr<NSDictionary>& attributes)
    : string_(wellFormedString(string)), length_(ORLFoundation::length(string_)) {
  if (length_ > 0) runs_.push_back({0, immutable(attributes)});
}

NSAttributedString::NSAttributedString(CopyOf other)
    : string_(other.text.string_), length_(other.text.length_), runs_(other.text.runs_) {}

void NSAttributedString::checkRange(NSRange range) const {
  if (range.location > length_ || range.length > length_ - range.location)
    throw NSException(NSRangeException, "The range is beyond the end of the text.");
}

std::size_t NSAttributedString::runAt(NSUInteger place) const {
  const auto after =
      std::upper_bound(runs_.begin(), runs_.end(), place,
                       [](NSUInteger at, const Run& run) { return at < run.location; });
  return static_cast<std::size_t>(std::distance(runs_.begin(), after)) - 1;
}

NSUInteger NSAttributedString::endOfRun(std::size_t run) const {
  return run + 1 < runs_.size() ? runs_[run + 1].location : length_;
}

std::shared_ptr<NSDictionary> NSAttributedString::attributesAtIndex(NSUInteger index,
                                                                    NSRange* effectiveRange) const {
  if (index >= length_) throw NSException(NSRangeException, "The place is beyond the end.");
  const std::size_t run = runAt(index);
  if (effectiveRange != nullptr)
    *effectiveRange = {runs_[run].location, endOfRun(run) - runs_[run].location};
  return runs_[run].attributes;
}

id NSAttributedString::attribute(std::string_view name, NSUInteger atIndex,
                                 NSRange* effectiveRange) const {
  id value = attributesAtIndex(atIndex)->objectForKey(name);
  if (effectiveRange == nullptr) return value;
  const auto isEqualIn = [&](std::size_t run) {
    return runs_[run].attributes->objectForKey(name) == value;
  };
  std::size_t first = runAt(atIndex);
  std::size_t last = first;
  while (first > 0 && isEqualIn(first - 1)) --first;
  while (last + 1 < runs_.size() && isEqualIn(last + 1)) ++last;
  *effectiveRange = {runs_[first].location, endOfRun(last) - runs_[first].location};
  return value;
}

std::vector<NSAttributedString::Stretch> NSAttributedString::stretches(std::string_view name,
                                                                       NSRange range) const {
  std::vector<Stretch> found;
  if (range.length == 0) return found;
  const id key = name;
  for (std::size_t run = runAt(range.location);
       run < runs_.size() && runs_[run].location < NSMaxRange(range); ++run) {
    id value = runs_[run].attributes->objectForKey(key);
    const NSRange part = intersection(range, runs_[run].location, endOfRun(run));
    if (!found.empty() && found.back().value == value) {
      found.back().range.length += part.length;
    } else {
      found.push_back({std::move(value), part});
    }
  }
  return found;
}

void NSAttributedString::enumerateAttribute(std::string_view name, NSRange inRange,
                                            NSUInteger options,
                                            const NSAttributeBlock& usingBlock) const {
  checkRange(inRange);
  std::vector<Stretch> found = stretches(name, inRange);
  if ((options & NSAttributedStringEnumerationReverse) != 0)
    std::reverse(found.begin(), found.end());
  bool stop = false;
  for (auto stretch = found.begin(); stretch != found.end() && !stop; ++stretch)
    usingBlock(stretch->value, stretch->range, stop);
}

bool NSAttributedString::isEqual(const NSObject* other) const {
  const auto* text = dynamic_cast<const NSAttributedString*>(other);
  return text != nullptr && text->string_ == string_ &&
         std::equal(runs_.begin(), runs_.end(), text->runs_.begin(), text->runs_.end(),
                    [](const Run& left, const Run& right) {
                      return left.location == right.location &&
                             left.attributes->isEqual(right.attributes.get());
                    });
}

NSUInteger NSAttributedString::hash() const { return std::hash<std::string>()(string_); }

std::string NSAttributedString::description() const {
  const icu::UnicodeString units = internal::text::utf16Of(string_);
  std::string text;
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    const auto begin = static_cast<std::int32_t>(runs_[run].location);
    const auto end = static_cast<std::int32_t>(endOfRun(run));
    text += internal::text::utf8Of(units.tempSubStringBetween(begin, end));
    text += runs_[run].attributes->description();
  }
  return text;
}

std::shared_ptr<NSObject> NSAttributedString::copy() {
  return receiverOr([this] { return NSMutableAttributedString(*this).copy(); });
}

std::shared_ptr<NSObject> NSAttributedString::mutableCopy() {
  return std::make_shared<NSMutableAttributedString>(*this);
}

}  // namespace ORLFoundation
