/// What a process is told of the system below it: the system's version, and what `uname` says. A
/// host, or a test, may put facts of its own in place of the machine's.
///
///     const NSProcessFacts facts{{13, 2, 0}, {"", "", "22.3.0", "", "x86_64"}};
///     NSSetProcessFacts(std::make_shared<const NSProcessFacts>(facts));
#pragma once

#include <ORLFoundation/platform/process/NSOperatingSystemVersion.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// `utsname`  The record that `uname` fills: five texts, each of at most 255 bytes.
struct NSSystemNames {
  std::string sysname, nodename, release, version, machine;

  friend bool operator==(const NSSystemNames&, const NSSystemNames&) = default;
};

struct NSProcessFacts {
  NSOperatingSystemVersion operatingSystemVersion;
  NSSystemNames systemNames;
};

/// The facts in use, never null. Without others, the machine's: the version is the `VERSION_ID` of
/// os-release(5), and of systems that have none that of the kernel.
[[nodiscard]] std::shared_ptr<const NSProcessFacts> NSCurrentProcessFacts();
/// Replaces the facts and gives back those before; null stands for the machine's. Safe on any
/// thread.
std::shared_ptr<const NSProcessFacts> NSSetProcessFacts(
    std::shared_ptr<const NSProcessFacts> facts);

/// For the house: the version that a text such as "22.04", quotes around it or not, begins with.
[[nodiscard]] NSOperatingSystemVersion NSVersionFromText(std::string_view text);

}  // namespace ORLFoundation
