

#include <ORLFoundation/platform/value/NSDate.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

using Clock = std::function<NSDate()>;

struct ClockDoor {
  std::mutex lock;
  std::shared_ptr<const Clock> replaced;
  std::atomic<bool> isReplaced{false};
};

ClockDoor& clockDoor() {
  static ClockDoor& door = *new ClockDoor;
  return door;
}

NSDate systemNow() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return NSDate::dateWithTimeIntervalSince1970(std::chrono::duration<double>(sinceEpoch).count());
}

/// Beyond this many seconds from the reference date years no longer fit the calendar type.
constexpr double kPrintable = 9.0e11;

}  // namespace

NSDate NSDate::date() {
  ClockDoor& door = clockDoor();
  if (!door.isReplaced.load(std::memory_order_acquire)) return systemNow();
  std::shared_ptr<const Clock> clock;
  {
    const std::lock_guard guard(door.lock);
    clock = door.replaced;
  }
  return clock ? (*clock)() : systemNow();
}

void NSDate::setClock(std::function<NSDate()> clock) {
  std::shared_ptr<const Clock> next;
  if (clock) next = std::make_shared<const Clock>(std::move(clock));
  ClockDoor& door = clockDoor();
  const std::lock_guard guard(door.lock);
  door.isReplaced.store(next != nullptr, std::memory_order_release);
  door.replaced.swap(next);
}

NSUInteger NSDate::hash() const noexcept { return std::hash<double>{}(seconds_); }

std::string NSDate::description() const {
  char text[64];
  if (!(std::fabs(seconds_) < kPrintable)) {
    std::snprintf(text, sizeof text, "%g", seconds_);
    return text;
  }
  const std::chrono::sys_seconds whole{std::chrono::seconds(
      static_cast<std::int64_t>(std::floor(seconds_ + NSTimeIntervalSince1970)))};
  const auto day = std::chrono::floor<std::chrono::days>(whole);
  const std::chrono::year_month_day civil(day);
  const std::chrono::hh_mm_ss time(whole - day);
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d +0000",
                static_cast<int>(civil.year()), static_cast<unsigned>(civil.month()),
                static_cast<unsigned>(civil.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return text;
}

}  // namespace ORLFoundation
