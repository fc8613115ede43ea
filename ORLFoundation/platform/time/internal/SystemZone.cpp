#include <ORLFoundation/platform/time/internal/SystemZone.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/time/ZoneTable.h>
#include <ORLFoundation/platform/time/internal/PosixZone.h>

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace ORLFoundation::internal::time {
namespace {

namespace fs = std::filesystem;
using Zone = std::shared_ptr<NSTimeZone>;

Zone zoneOfTable(std::string name, std::shared_ptr<const ZoneTable> table) {
  return table ? std::make_shared<NSTimeZone>(std::move(name), std::move(table)) : nullptr;
}

// The zone whose name a path ends in.
Zone zoneWithinFolder(const std::string& path) {
  constexpr std::string_view kFolder = "/zoneinfo/";
  const std::size_t folder = path.rfind(kFolder);
  return folder == std::string::npos
             ? nullptr
             : NSTimeZone::timeZoneWithName(std::string_view(path).substr(folder + kFolder.size()));
}

// Links are followed one by one: the first that leads into zoneinfo names the zone.
Zone zoneOfFile(const std::string& file) {
  constexpr int kMostLinks = 16;
  fs::path path = file;
  for (int link = 0; link < kMostLinks; ++link) {
    if (Zone zone = zoneWithinFolder(path.lexically_normal().string())) return zone;
    std::error_code error;
    const fs::path target = fs::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / target;
  }
  std::error_code error;
  return fs::is_regular_file(path, error) ? zoneOfTable(file, ZoneTable::read(path.string()))
                                          : nullptr;
}

// "GMT+5" is 5 hours west here, and east where a zone is asked for by name.
bool isOffsetText(std::string_view text) {
  const std::string_view scale = text.substr(0, 3);
  return (scale == "GMT" || scale == "UTC") && text.size() > 3 &&
         (text[3] == '+' || text[3] == '-');
}

Zone zoneOfVariable(std::string_view text) {
  if (text.front() == ':') text.remove_prefix(1);
  if (!text.empty() && text.front() == '/') return zoneOfFile(std::string(text));
  if (!isOffsetText(text)) {
    if (Zone zone = NSTimeZone::timeZoneWithName(text)) return zone;
  }
  return zoneOfTable(std::string(text), zoneFromPosixText(text));
}

}  // namespace

Zone zoneOfSettings(const SystemZoneSettings& settings) {
  if (settings.variable && !settings.variable->empty()) {
    if (Zone zone = zoneOfVariable(*settings.variable)) return zone;
    NSLog("TZ tells no time zone: " + *settings.variable + ". The machine's own is taken.");
  }
  if (Zone zone = zoneOfFile(settings.machineFile)) return zone;
  NSLog(settings.machineFile + " tells no time zone. UTC is taken.");
  Zone zone = NSTimeZone::timeZoneWithName("UTC");
  return zone ? zone : NSTimeZone::timeZoneForSecondsFromGMT(0);
}

}  // namespace ORLFoundation::internal::time
