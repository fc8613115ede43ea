
#include <ORLFoundation/platform/text/NSAttributedString.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <cstddef>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSMutableDictionary> changeable(const NSDictionary& attributes) {
  return std::make_shared<NSMutableDictionary>(attributes.entries());
}

/// A dictionary that no longer changes.
std::shared_ptr<NSDictionary> finished(const std::shared_ptr<NSMutableDictionary>& attributes) {
  return std::static_pointer_cast<NSDictionary>(attributes->copy());
}

/// Opens the constructor that copies, for std::make_shared.
class CopiedAttributedString final : public NSAttributedString {
 public:
  explicit CopiedAttributedString(const NSAttributedString& other)
      : NSAttributedString(CopyOf{other}) {}
};

}  // namespace

NSMutableAttributedString::NSMutableAttributedString(const NSAttributedString& other)
    : NSAttributedString(CopyOf{other}) {}

/// The run that begins at a place, made by cutting another one if need be.
std::size_t NSMutableAttributedString::splitAt(NSUInteger place) {
  if (place == length_) return runs_.size();
  const std::size_t run = runAt(place);
  if (runs_[run].location == place) return run;
  runs_.insert(runs_.begin() + static_cast<std::ptrdiff_t>(run) + 1,
               Run{place, runs_[run].attributes});
  return run + 1;
}

/// Makes one of neighbours with equal attributes, from the run before `first` to the run `last`.
void NSMutableAttributedString::joinRuns(std::size_t first, std::size_t last) {
  const auto begin = runs_.begin() + static_cast<std::ptrdiff_t>(first > 0 ? first - 1 : 0);
  const auto end = runs_.begin() + static_cast<std::ptrdiff_t>(std::min(last + 1, runs_.size()));
  const auto kept = std::unique(begin, end, [](const Run& left, const Run& right) {
    return left.attributes->isEqual(right.attributes.get());
  });
  runs_.erase(kept, end);
}

void NSMutableAttributedString::changeRuns(NSRange range, const Change& change) {
  checkRange(range);
  if (range.length == 0) return;
  const std::size_t first = splitAt(range.location);
  const std::size_t last = splitAt(NSMaxRange(range));
  for (std::size_t run = first; run < last; ++run)
    runs_[run].attributes = change(*runs_[run].attributes);
  joinRuns(first, last);
}

void NSMutableAttributedString::addAttribute(std::string_view name, const id& value,
                                             NSRange range) {
  if (value.isNil())
    throw NSException(NSInvalidArgumentException, "The value of an attribute must not be nil.");
  changeRuns(range, [&](const NSDictionary& before) {
    const auto attributes = changeable(before);
    attributes->setObject(value, name);
    return finished(attributes);
  });
}

void NSMutableAttributedString::addAttributes(const NSDictionary& added, NSRange range) {
  changeRuns(range, [&](const NSDictionary& before) {
    const auto attributes = changeable(before);
    attributes->addEntriesFromDictionary(added);
    return finished(attributes);
  });
}

void NSMutableAttributedString::removeAttribute(std::string_view name, NSRange range) {
  changeRuns(range, [&](const NSDictionary& before) {
    const auto attributes = changeable(before);
    attributes->removeObjectForKey(name);
    return finished(attributes);
  });
}

void NSMutableAttributedString::setAttributes(const std::shared_ptr<NSDictionary>& attributes,
                                              NSRange range) {
  std::shared_ptr<NSDictionary> set =
      attributes ? copyOf(attributes) : std::make_shared<NSDictionary>();
  changeRuns(range, [&set](const NSDictionary&) { return set; });
}

std::shared_ptr<NSObject> NSMutableAttributedString::copy() {
  return std::make_shared<CopiedAttributedString>(*this);
}

}  // namespace ORLFoundation
