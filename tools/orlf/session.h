/// What every command shares: where it writes, the options that work before and after the command's
/// name, and the calendar that these options make.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

struct CommonOptions {
  bool json = false;
  bool quiet = false;
  std::optional<std::string> zone;
  std::string locale = "en_US";
};

/// One run of the tool. Commands write to the streams only.
struct Session {
  std::ostream& out;
  std::ostream& err;
  CommonOptions options = {};
  /// The calendar of the zone and the locale, which are known to exist when a command runs.
  std::shared_ptr<ORLFoundation::NSCalendar> calendar = nullptr;
  /// What a command that does its job ends with; those that answer a question say no with 1.
  int exitCode = 0;
  /// The command that runs, for its notes.
  std::string command = {};
};

/// Prints a line for people, "orlf plan: ...", beside the output.
void printNote(Session& session, std::string_view note);

/// A Gregorian calendar in a zone, with the weeks and the weekend of the locale's region. Throws
/// UsageFailure for a zone or a locale that is unknown.
[[nodiscard]] std::shared_ptr<ORLFoundation::NSCalendar> makeCalendar(const std::string& zone,
                                                                      const std::string& locale);

}  // namespace orlftool
