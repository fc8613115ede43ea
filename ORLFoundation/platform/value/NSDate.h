/// An instant: seconds, with fractions, since 2001-01-01T00:00:00Z. A date has no zone and no
/// calendar; those belong to the `NSCalendar` that it is asked through. A date that may be absent
/// is a `std::optional<NSDate>`.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <functional>
#include <string>

namespace ORLFoundation {

/// Seconds from 1970-01-01T00:00:00Z to the reference date.
inline constexpr NSTimeInterval NSTimeIntervalSince1970 = 978307200.0;

class NSDate {
 public:
  /// The reference date, 2001-01-01T00:00:00Z.
  constexpr NSDate() noexcept = default;

  /// `date`  The current instant, from the process's clock (see `setClock`).
  [[nodiscard]] static NSDate date();
  /// `dateWithTimeIntervalSince1970:`
  [[nodiscard]] static constexpr NSDate dateWithTimeIntervalSince1970(
      NSTimeInterval seconds) noexcept {
    return NSDate(seconds - NSTimeIntervalSince1970);
  }
  /// `dateWithTimeIntervalSinceReferenceDate:`
  [[nodiscard]] static constexpr NSDate dateWithTimeIntervalSinceReferenceDate(
      NSTimeInterval seconds) noexcept {
    return NSDate(seconds);
  }
  /// `distantFuture`  4001-01-01T00:00:00Z, which stands for "no end".
  [[nodiscard]] static constexpr NSDate distantFuture() noexcept { return NSDate(63113904000.0); }
  /// `distantPast`
  [[nodiscard]] static constexpr NSDate distantPast() noexcept { return NSDate(-63114076800.0); }

  /// Replaces the clock behind `date` for the whole process and gives back the one before it; an
  /// empty function is the system's. Safe to call from any thread.
  static std::function<NSDate()> setClock(std::function<NSDate()> clock);

  /// `timeIntervalSinceReferenceDate`  Seconds.
  [[nodiscard]] constexpr NSTimeInterval timeIntervalSinceReferenceDate() const noexcept {
    return seconds_;
  }
  /// `timeIntervalSince1970`  Seconds.
  [[nodiscard]] constexpr NSTimeInterval timeIntervalSince1970() const noexcept {
    return seconds_ + NSTimeIntervalSince1970;
  }
  /// `timeIntervalSinceDate:`  Seconds from the other date to this one.
  [[nodiscard]] constexpr NSTimeInterval timeIntervalSinceDate(NSDate other) const noexcept {
    return seconds_ - other.seconds_;
  }
  /// `dateByAddingTimeInterval:`
  [[nodiscard]] constexpr NSDate dateByAddingTimeInterval(NSTimeInterval seconds) const noexcept {
    return NSDate(seconds_ + seconds);
  }
  /// `compare:`
  [[nodiscard]] constexpr NSComparisonResult compare(NSDate other) const noexcept {
    if (seconds_ < other.seconds_) return NSOrderedAscending;
    return seconds_ > other.seconds_ ? NSOrderedDescending : NSOrderedSame;
  }
  /// `isEqualToDate:`  Equal instants, to the last bit of the fraction.
  [[nodiscard]] constexpr bool isEqualToDate(NSDate other) const noexcept {
    return seconds_ == other.seconds_;
  }
  /// Equal dates have equal hashes.
  [[nodiscard]] NSUInteger hash() const noexcept;
  /// "2024-01-31 09:30:00 +0000"; fractions of a second are not shown.
  [[nodiscard]] std::string description() const;

  friend constexpr bool operator==(NSDate left, NSDate right) noexcept {
    return left.isEqualToDate(right);
  }

 private:
  explicit constexpr NSDate(NSTimeInterval seconds) noexcept : seconds_(seconds) {}

  NSTimeInterval seconds_ = 0;
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSDate> {
  std::size_t operator()(ORLFoundation::NSDate date) const noexcept { return date.hash(); }
};
