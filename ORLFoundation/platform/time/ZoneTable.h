/// The offsets of one zone at all times, as a flat table that is read once and never changes. Every
/// look-up is a pure function of the table: no lock, no allocation, any thread.
///
/// Times are whole seconds since 1970-01-01T00:00:00, of GMT (an instant) or of the zone's own
/// clock (a local time). A zone whose closing rule goes on for ever repeats its last 400 years.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation::internal::time {

class ZoneTable {
 public:
  /// A stretch of time under one offset.
  struct Segment {
    std::int64_t start;       // instant of its beginning
    std::int64_t firstLocal;  // local times from here on belong to it, a doubled hour's only after
    std::int64_t lastLocal;   // the same, a doubled hour's at once
    std::int32_t offset;      // seconds east of GMT
    bool daylightSaving;
  };

  /// The table of a zone of the system's zoneinfo; null when there is none of that name.
  [[nodiscard]] static std::shared_ptr<const ZoneTable> read(const std::string& name);
  /// One offset for all time, seconds east of GMT.
  [[nodiscard]] static std::shared_ptr<const ZoneTable> fixed(std::int32_t offset);

  /// The segment of an instant within the table. Instants of later repetitions are brought into it
  /// first, so its `start` may lie whole cycles before them.
  [[nodiscard]] const Segment& segmentAt(std::int64_t instant) const noexcept {
    const std::uint64_t place = placeInIndex(instant);
    if (place >= indexSize_) return segmentOutsideIndex(instant);
    const Segment* segment = &segments_[index_[place]];
    while (instant >= segment[1].start) ++segment;
    return *segment;
  }
  /// Seconds east of GMT at an instant.
  [[nodiscard]] std::int32_t offsetAt(std::int64_t instant) const noexcept {
    return segmentAt(instant).offset;
  }
  /// The instant of a local time: the first of a doubled time's two; a time that a clock change
  /// leaves out is moved on by the length of the gap.
  [[nodiscard]] std::int64_t firstInstantOfLocal(std::int64_t local) const noexcept {
    return local - segmentOfLocal<&Segment::firstLocal>(local).offset;
  }
  /// As above, the second of a doubled time's two.
  [[nodiscard]] std::int64_t lastInstantOfLocal(std::int64_t local) const noexcept {
    return local - segmentOfLocal<&Segment::lastLocal>(local).offset;
  }
  /// The first instant at which the local clock shows the time or a later one: the clock change
  /// itself for a time that it leaves out.
  [[nodiscard]] std::int64_t startInstantOfLocal(std::int64_t local) const noexcept {
    const Segment& segment = segmentOfLocal<&Segment::firstLocal>(local);
    const std::int64_t instant = local - segment.offset;
    return instant < (&segment)[1].start ? instant : startAtClockChange(local, segment);
  }
  /// Whether the offset stays the same for `margin` seconds before and after the instant.
  [[nodiscard]] bool isSteadyAround(std::int64_t instant, std::int64_t margin) const noexcept {
    if (placeInIndex(instant) >= indexSize_) return segments_.size() == 2;
    const Segment& segment = segmentAt(instant);
    return instant - margin >= segment.start && instant + margin < (&segment)[1].start;
  }
  /// The stretch of one offset that holds an instant, at its own place in time.
  struct Stretch {
    std::int64_t begin;  // kBeginningOfTime where no change comes before
    std::int64_t end;    // kEndOfTime where no change follows
    std::int32_t offset;
  };
  [[nodiscard]] Stretch stretchAt(std::int64_t instant) const noexcept;
  /// Local times that the zone's clock shows once each, all at one offset.
  struct LocalStretch {
    std::int64_t begin;  // kBeginningOfTime where no change comes before
    std::int64_t end;    // kEndOfTime where no change follows
    std::int32_t offset;
  };
  /// The stretch that holds a local time, or ends before it where a clock change leaves that time
  /// out or doubles it. A stretch may end where the table repeats, without a change.
  [[nodiscard]] LocalStretch localStretchAt(std::int64_t local) const noexcept;

  static constexpr std::int64_t kBeginningOfTime = std::numeric_limits<std::int64_t>::min();
  static constexpr std::int64_t kEndOfTime = std::numeric_limits<std::int64_t>::max();

  /// Use `read` or `fixed`: segments in order of time, the first from the beginning of time.
  ZoneTable(std::vector<Segment> segments, bool repeats);

 private:
  // The index covers 1900 to about 2500 in steps of some 24 days, and ends where a table repeats.
  static constexpr std::int64_t kIndexStart = -2208988800;
  static constexpr int kIndexShift = 21;
  static constexpr std::uint64_t kIndexSize = 9030;

  [[nodiscard]] static constexpr std::uint64_t placeInIndex(std::int64_t instant) noexcept {
    return static_cast<std::uint64_t>(instant - kIndexStart) >> kIndexShift;
  }
  [[nodiscard]] const Segment& segmentOutsideIndex(std::int64_t instant) const noexcept;
  template <std::int64_t Segment::*begin>
  [[nodiscard]] const Segment& segmentOfLocal(std::int64_t local) const noexcept {
    // The segment of an instant that is certainly not later, then on to the right one.
    const std::uint64_t place = placeInIndex(local - largestOffset_);
    if (place >= indexSize_) return segmentOfLocalOutsideIndex(local, begin);
    const Segment* segment = &segments_[index_[place]];
    while (local >= segment[1].*begin) ++segment;
    return *segment;
  }
  [[nodiscard]] const Segment& segmentOfLocalOutsideIndex(
      std::int64_t local, std::int64_t Segment::*begin) const noexcept;
  [[nodiscard]] std::int64_t startAtClockChange(std::int64_t local,
                                                const Segment& segment) const noexcept;
  [[nodiscard]] std::int64_t cyclesPast(std::int64_t time) const noexcept;

  std::vector<Segment> segments_;  // closed by one at the end of time
  const std::uint16_t* index_;     // by step: the segment at the step's beginning
  std::uint64_t indexSize_ = kIndexSize;
  std::vector<std::uint16_t> ownIndex_;
  std::int64_t repeatsFrom_ = kEndOfTime;
  std::int64_t largestOffset_ = 0;
};

}  // namespace ORLFoundation::internal::time
