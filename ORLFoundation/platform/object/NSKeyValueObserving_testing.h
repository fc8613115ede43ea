/// The classes that the tests of observation observe, and the listener that writes down what it
/// hears.
#pragma once

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation::observing {

inline constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
inline constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
inline constexpr NSUInteger kInitial = NSKeyValueObservingOptionInitial;
inline constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

class Segment : public NSObject {
 public:
  explicit Segment(NSInteger start = 0) : start_(start) {}
  [[nodiscard]] NSInteger start() const { return start_; }
  void setStart(NSInteger start) {
    changeValue("start", [&] { start_ = start; });
  }
  /// Tells nobody.
  [[nodiscard]] NSInteger quiet() const { return quiet_; }
  void setQuiet(NSInteger quiet) { quiet_ = quiet; }
  void failToSetStart() {
    changeValue("start", [] { throw std::runtime_error("refused"); });
  }

  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(NSObject::keyTable(),
                                  {NSKey::readWrite<&Segment::start, &Segment::setStart>("start"),
                                   NSKey::readWrite<&Segment::quiet, &Segment::setQuiet>("quiet")});
    return table;
  }

 private:
  NSInteger start_;
  NSInteger quiet_ = 0;
};

class Plan : public NSObject {
 public:
  using Segments = std::vector<std::shared_ptr<Segment>>;

  [[nodiscard]] const Segments& segments() const { return segments_; }
  void setSegments(Segments segments) {
    changeValue("segments", [&] { segments_ = std::move(segments); });
  }
  [[nodiscard]] NSInteger end() const { return end_; }
  void setEnd(NSInteger end) {
    changeValue("end", [&] { end_ = end; });
  }
  [[nodiscard]] std::shared_ptr<Segment> first() const {
    return segments_.empty() ? nullptr : segments_.front();
  }
  [[nodiscard]] std::shared_ptr<Segment> last() const {
    return segments_.empty() ? nullptr : segments_.back();
  }
  [[nodiscard]] std::optional<NSInteger> planStart() const {
    return first() ? std::optional(first()->start()) : std::nullopt;
  }
  [[nodiscard]] std::optional<NSInteger> lastDate() const {
    if (end_ != 0) return end_;
    return last() ? std::optional(last()->start()) : std::nullopt;
  }
  [[nodiscard]] std::shared_ptr<Segment> favorite() const { return favorite_.lock(); }
  void setFavorite(const std::shared_ptr<Segment>& favorite) {
    changeValue("favorite", [&] { favorite_ = favorite; });
  }

  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        NSObject::keyTable(),
        {NSKey::readWrite<&Plan::segments, &Plan::setSegments>("segments"),
         NSKey::readWrite<&Plan::end, &Plan::setEnd>("end"),
         NSKey::readWrite<&Plan::favorite, &Plan::setFavorite>("favorite"),
         NSKey::readOnly<&Plan::first>("first", {"segments"}),
         NSKey::readOnly<&Plan::last>("last", {"segments"}),
         NSKey::readOnly<&Plan::planStart>("planStart", {"first.start"}),
         NSKey::readOnly<&Plan::lastDate>("lastDate", {"end", "last.start"})});
    return table;
  }

 private:
  Segments segments_;
  NSInteger end_ = 0;
  std::weak_ptr<Segment> favorite_;
};

/// Writes down what it hears: "old>new".
class Listener {
 public:
  Listener(NSObject& object, std::string_view keyPath, NSUInteger options = kOld | kNew)
      : token_(object.addObserver(keyPath, options, [this](const NSKeyValueChange& change) {
          heard_.push_back((change.isPrior ? "prior " : "") + change.oldValue.description() + ">" +
                           change.newValue.description());
        })) {}

  [[nodiscard]] std::vector<std::string> heard() { return std::exchange(heard_, {}); }
  void stop() { token_.reset(); }
  void invalidate() { token_->invalidate(); }

 private:
  std::vector<std::string> heard_;
  std::shared_ptr<NSKeyValueObservation> token_;
};

inline std::shared_ptr<Segment> segment(NSInteger start) {
  return std::make_shared<Segment>(start);
}

}  // namespace ORLFoundation::observing
