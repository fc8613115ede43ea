
#include <ORLFoundation/platform/time/ZoneTable.h>

#include <ORLFoundation/platform/base/CivilDays.h>
#include <cctz/time_zone.h>

#include <algorithm>
#include <chrono>

namespace ORLFoundation::internal::time {

namespace civil = base::civil;

namespace {

constexpr std::int64_t kCycle = civil::kDaysPerCycle * civil::kSecondsPerDay;
constexpr std::int64_t kBeginningOfTime = ZoneTable::kBeginningOfTime;

using CctzSeconds = cctz::time_point<cctz::seconds>;

CctzSeconds timePoint(std::int64_t instant) { return CctzSeconds(cctz::seconds(instant)); }

ZoneTable::Segment segmentFrom(const cctz::time_zone& zone, std::int64_t start,
                               std::int64_t probe) {
  const auto lookup = zone.lookup(timePoint(probe));
  return {start, 0, 0, lookup.offset, lookup.is_dst};
}

std::vector<ZoneTable::Segment> listSegments(const cctz::time_zone& zone) {
  constexpr std::int64_t kLongAgo = -kCycle * 20;
  std::vector<ZoneTable::Segment> segments{segmentFrom(zone, kBeginningOfTime, kLongAgo)};
  cctz::time_zone::civil_transition change;
  for (CctzSeconds at = timePoint(kLongAgo); zone.next_transition(at, &change);) {
    // Forward, the clock's last reading before the change does not exist; back, its first one after
    // the change comes twice.
    const auto before = zone.lookup(change.from);
    const bool forward = before.kind == cctz::time_zone::civil_lookup::SKIPPED;
    at = forward ? before.trans : zone.lookup(change.to).trans;
    const std::int64_t start = at.time_since_epoch().count();
    segments.push_back(segmentFrom(zone, start, start));
  }
  return segments;
}

// Whether clocks still change in the year after the last listed change.
bool goesOnChanging(const cctz::time_zone& zone, const ZoneTable::Segment& last) {
  if (last.start == kBeginningOfTime) return false;
  constexpr std::int64_t kStep = 10 * civil::kSecondsPerDay;
  for (std::int64_t step = 1; step <= 40; ++step) {
    if (zone.lookup(timePoint(last.start + step * kStep)).offset != last.offset) return true;
  }
  return false;
}

// The local times at which each segment begins to be the one meant, in rising order even where two
// changes lie close together.
void setLocalBeginnings(std::vector<ZoneTable::Segment>& segments) {
  segments.front().firstLocal = segments.front().lastLocal = kBeginningOfTime;
  for (std::size_t i = 1; i < segments.size(); ++i) {
    ZoneTable::Segment& segment = segments[i];
    const std::int32_t before = segments[i - 1].offset;
    segment.firstLocal = segment.start + std::max(before, segment.offset);
    segment.lastLocal = segment.start + segment.offset;
    segment.firstLocal = std::max(segment.firstLocal, segments[i - 1].firstLocal);
    segment.lastLocal = std::max(segment.lastLocal, segments[i - 1].lastLocal);
  }
}

}  // namespace

std::shared_ptr<const ZoneTable> ZoneTable::read(const std::string& name) {
  cctz::time_zone zone;
  if (!cctz::load_time_zone(name, &zone)) return nullptr;
  std::vector<Segment> segments = listSegments(zone);
  const bool repeats = goesOnChanging(zone, segments.back());
  return std::make_shared<const ZoneTable>(std::move(segments), repeats);
}

std::shared_ptr<const ZoneTable> ZoneTable::fixed(std::int32_t offset) {
  return std::make_shared<const ZoneTable>(
      std::vector<Segment>{{kBeginningOfTime, 0, 0, offset, false}}, false);
}

ZoneTable::ZoneTable(std::vector<Segment> segments, bool repeats) : segments_(std::move(segments)) {
  setLocalBeginnings(segments_);
  if (repeats) {
    repeatsFrom_ = segments_.back().start;
    indexSize_ = std::min(kIndexSize, placeInIndex(repeatsFrom_));
  }
  for (const Segment& segment : segments_)
    largestOffset_ = std::max<std::int64_t>(largestOffset_, segment.offset);
  segments_.push_back({kEndOfTime, kEndOfTime, kEndOfTime, segments_.back().offset,
                       segments_.back().daylightSaving});
  static const std::vector<std::uint16_t> onlyOneSegment(kIndexSize, 0);
  index_ = onlyOneSegment.data();
  if (segments_.size() == 2) return;
  ownIndex_.reserve(kIndexSize);
  std::size_t current = 0;
  for (std::uint64_t place = 0; place < kIndexSize; ++place) {
    const std::int64_t begin = kIndexStart + static_cast<std::int64_t>(place << kIndexShift);
    while (begin >= segments_[current + 1].start) ++current;
    ownIndex_.push_back(static_cast<std::uint16_t>(current));
  }
  index_ = ownIndex_.data();
}

std::int64_t ZoneTable::cyclesPast(std::int64_t time) const noexcept {
  return time < repeatsFrom_ ? 0 : (time - repeatsFrom_) / kCycle + 1;
}

const ZoneTable::Segment& ZoneTable::segmentOutsideIndex(std::int64_t instant) const noexcept {
  const std::int64_t within = instant - cyclesPast(instant) * kCycle;
  if (placeInIndex(within) < indexSize_) return segmentAt(within);
  const auto next = std::upper_bound(
      segments_.begin() + 1, segments_.end() - 1, within,
      [](std::int64_t time, const Segment& segment) { return time < segment.start; });
  return *(next - 1);
}

const ZoneTable::Segment& ZoneTable::segmentOfLocalOutsideIndex(
    std::int64_t local, std::int64_t Segment::*begin) const noexcept {
  // A local time near the seam is as well read a cycle earlier: both sides agree.
  const std::int64_t within = local - cyclesPast(local - largestOffset_) * kCycle;
  const std::uint64_t place = placeInIndex(within - largestOffset_);
  if (place < indexSize_) {
    const Segment* segment = &segments_[index_[place]];
    while (within >= segment[1].*begin) ++segment;
    return *segment;
  }
  const auto next = std::upper_bound(
      segments_.begin() + 1, segments_.end() - 1, within,
      [begin](std::int64_t time, const Segment& segment) { return time < segment.*begin; });
  return *(next - 1);
}

std::int64_t ZoneTable::startAtClockChange(std::int64_t local,
                                           const Segment& segment) const noexcept {
  // In a later repetition the table's change stands whole cycles earlier.
  const std::int64_t later = cyclesPast(local - largestOffset_) * kCycle;
  return std::min(local - segment.offset, (&segment)[1].start + later);
}

ZoneTable::Stretch ZoneTable::stretchAt(std::int64_t instant) const noexcept {
  const std::int64_t later = cyclesPast(instant) * kCycle;
  const Segment& segment = segmentAt(instant - later);
  const std::int64_t begin = segment.start;
  const std::int64_t end = (&segment)[1].start;
  return {begin == kBeginningOfTime ? begin : begin + later, end == kEndOfTime ? end : end + later,
          segment.offset};
}

ZoneTable::LocalStretch ZoneTable::localStretchAt(std::int64_t local) const noexcept {
  const std::int64_t later = cyclesPast(local - largestOffset_) * kCycle;
  const Segment& segment = segmentOfLocal<&Segment::firstLocal>(local - later);
  const Segment& next = (&segment)[1];
  const bool isLast = next.start == kEndOfTime;
  LocalStretch stretch{segment.firstLocal,
                       isLast ? kEndOfTime : std::min(next.lastLocal, next.start + segment.offset),
                       segment.offset};
  if (repeatsFrom_ == kEndOfTime) return stretch;
  // Times of one reading of the table, since the change at its seam has another before it each
  // time.
  const std::int64_t seam = repeatsFrom_ + largestOffset_;
  if (isLast) stretch.end = seam;
  if (later != 0) stretch.begin = std::max(stretch.begin, seam - kCycle) + later;
  stretch.end += later;
  return stretch;
}

}  // namespace ORLFoundation::internal::time
