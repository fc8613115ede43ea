
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/time/ZoneTable.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>
#include <ORLFoundation/platform/time/internal/SystemZone.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>

namespace ORLFoundation {

using namespace internal::time;

namespace {

constexpr NSInteger kLargestOffset = NSInteger{18} * 3600;

// The zones that were read, for the life of the process: as many as the system has names, and the
// offsets by whole minutes.
struct ZoneCache {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<NSTimeZone>, std::less<>> zones;
  std::shared_ptr<NSTimeZone> chosenDefault;
  // The system's zone and what it was found by.
  std::shared_ptr<NSTimeZone> system;
  SystemZoneSettings systemSettings;
  std::string machineLink;
};

ZoneCache& zoneCache() {
  static auto* const cache = new ZoneCache;  // outlives the objects that use it
  return *cache;
}

// Only names within the zoneinfo folder: no absolute path, no way up, no name of a scheme.
bool isZoneName(std::string_view name) {
  const auto isNameCharacter = [](char c) {
    return internal::base::isLetterOrDigit(c) || c == '/' || c == '_' || c == '-' || c == '+';
  };
  return !name.empty() && name.size() < 64 && name.front() != '/' &&
         name.find("//") == std::string_view::npos && name.substr(0, 6) != "Fixed/" &&
         std::all_of(name.begin(), name.end(), isNameCharacter);
}

std::shared_ptr<NSTimeZone> readZone(std::string_view name) {
  std::string text(name);
  std::shared_ptr<const ZoneTable> table = ZoneTable::read(text);
  if (!table) return nullptr;
  return std::make_shared<NSTimeZone>(std::move(text), std::move(table));
}

std::optional<NSInteger> twoDigits(std::string_view text) {
  if (text.empty() || text.size() > 2) return std::nullopt;
  NSInteger value = 0;
  for (const char c : text) {
    if (!internal::base::isDigit(c)) return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return value;
}

// "GMT+5", "GMT+0530" and "UTC-05:30" in seconds.
std::optional<NSInteger> offsetFromName(std::string_view name) {
  const std::string_view scale = name.substr(0, 3);
  if ((scale != "GMT" && scale != "UTC") || name.size() < 5) return std::nullopt;
  if (name[3] != '+' && name[3] != '-') return std::nullopt;
  std::string digits(name.substr(4));
  if (const std::size_t colon = digits.find(':'); colon != std::string::npos) {
    if (digits.size() - colon != 3) return std::nullopt;
    digits.erase(colon, 1);
  }
  const std::size_t hourDigits = digits.size() <= 2 ? digits.size() : digits.size() - 2;
  const auto hours = twoDigits(std::string_view(digits).substr(0, hourDigits));
  const auto minutes = hourDigits == digits.size()
                           ? std::optional<NSInteger>(0)
                           : twoDigits(std::string_view(digits).substr(hourDigits));
  if (!hours || !minutes || *minutes > 59) return std::nullopt;
  const NSInteger seconds = *hours * 3600 + *minutes * 60;
  return name[3] == '-' ? -seconds : seconds;
}

std::string nameOfOffset(NSInteger seconds) {
  if (seconds == 0) return "GMT";
  const int size = static_cast<int>(std::abs(seconds));
  char text[24];
  std::snprintf(text, sizeof text, "GMT%c%02d%02d", seconds < 0 ? '-' : '+', size / 3600,
                size / 60 % 60);
  if (size % 60 == 0) return text;
  char rest[8];
  std::snprintf(rest, sizeof rest, "%02d", size % 60);
  return std::string(text) + rest;
}

// The zone of a name that was asked for before, else the one made now.
template <class Make>
std::shared_ptr<NSTimeZone> knownZone(const std::string& name, const Make& make) {
  ZoneCache& cache = zoneCache();
  const std::lock_guard lock(cache.mutex);
  if (const auto known = cache.zones.find(name); known != cache.zones.end()) return known->second;
  std::shared_ptr<NSTimeZone> zone = make();
  if (zone) cache.zones.emplace(name, zone);
  return zone;
}

SystemZoneSettings currentSettings() {
  SystemZoneSettings settings;
  if (const char* variable = std::getenv("TZ")) settings.variable = variable;
  return settings;
}

// What the machine's file is a link to, which changes when the machine's zone is set.
std::string machineLink() {
  std::error_code error;
  return std::filesystem::read_symlink(SystemZoneSettings{}.machineFile, error).string();
}

}  // namespace

NSTimeZone::NSTimeZone(std::string name, std::shared_ptr<const ZoneTable> table)
    : name_(std::move(name)), table_(std::move(table)) {}

std::shared_ptr<NSTimeZone> NSTimeZone::timeZoneWithName(std::string_view name) {
  if (name == "GMT") return timeZoneForSecondsFromGMT(0);
  if (const auto offset = offsetFromName(name)) return timeZoneForSecondsFromGMT(*offset);
  if (!isZoneName(name)) return nullptr;
  return knownZone(std::string(name), [&name] { return readZone(name); });
}

std::shared_ptr<NSTimeZone> NSTimeZone::timeZoneForSecondsFromGMT(NSInteger seconds) {
  if (seconds < -kLargestOffset || seconds > kLargestOffset) return nullptr;
  std::string name = nameOfOffset(seconds);
  const auto make = [&] {
    return std::make_shared<NSTimeZone>(name, ZoneTable::fixed(static_cast<std::int32_t>(seconds)));
  };
  return seconds % 60 == 0 ? knownZone(name, make) : make();
}

std::shared_ptr<NSTimeZone> NSTimeZone::systemTimeZone() {
  const SystemZoneSettings settings = currentSettings();
  const std::string link = machineLink();
  ZoneCache& cache = zoneCache();
  {
    const std::lock_guard lock(cache.mutex);
    if (cache.system && cache.systemSettings == settings && cache.machineLink == link)
      return cache.system;
  }
  std::shared_ptr<NSTimeZone> zone = zoneOfSettings(settings);
  const std::lock_guard lock(cache.mutex);
  cache.system = zone;
  cache.systemSettings = settings;
  cache.machineLink = link;
  return zone;
}

std::shared_ptr<NSTimeZone> NSTimeZone::defaultTimeZone() {
  ZoneCache& cache = zoneCache();
  {
    const std::lock_guard lock(cache.mutex);
    if (cache.chosenDefault) return cache.chosenDefault;
  }
  return systemTimeZone();
}

void NSTimeZone::setDefaultTimeZone(std::shared_ptr<NSTimeZone> zone) {
  ZoneCache& cache = zoneCache();
  const std::lock_guard lock(cache.mutex);
  cache.chosenDefault = std::move(zone);
}

const std::string& NSTimeZone::name() const noexcept { return name_; }

NSInteger NSTimeZone::secondsFromGMTForDate(NSDate date) const noexcept {
  Instant instant;
  return splitDate(date, instant) ? table_->offsetAt(instant.seconds) : 0;
}

bool NSTimeZone::isDaylightSavingTimeForDate(NSDate date) const noexcept {
  Instant instant;
  return splitDate(date, instant) && table_->segmentAt(instant.seconds).daylightSaving;
}

std::optional<NSDate> NSTimeZone::nextDaylightSavingTimeTransitionAfterDate(NSDate date) const {
  Instant instant;
  if (!splitDate(date, instant)) return std::nullopt;
  const std::int64_t change = table_->stretchAt(instant.seconds).end;
  if (change == ZoneTable::kEndOfTime) return std::nullopt;
  return dateFromInstant({change, 0});
}

NSTimeZone::OffsetStretch NSTimeZone::offsetStretchForDate(NSDate date) const noexcept {
  Instant instant;
  if (!splitDate(date, instant)) return {0, 0, 0};
  const ZoneTable::Stretch stretch = table_->stretchAt(instant.seconds);
  constexpr auto kForEver = std::numeric_limits<NSTimeInterval>::infinity();
  return {
      stretch.begin == ZoneTable::kBeginningOfTime ? -kForEver
                                                   : static_cast<NSTimeInterval>(stretch.begin),
      stretch.end == ZoneTable::kEndOfTime ? kForEver : static_cast<NSTimeInterval>(stretch.end),
      stretch.offset};
}

std::string NSTimeZone::className() const { return "NSTimeZone"; }

bool NSTimeZone::isEqual(const NSObject* other) const {
  const auto* zone = dynamic_cast<const NSTimeZone*>(other);
  return zone && zone->name_ == name_;
}

NSUInteger NSTimeZone::hash() const { return std::hash<std::string>{}(name_); }

std::string NSTimeZone::description() const { return name_; }

std::shared_ptr<NSObject> NSTimeZone::copy() {
  return receiverOr([this] { return std::make_shared<NSTimeZone>(name_, table_); });
}

}  // namespace ORLFoundation
