
#include <ORLFoundation/platform/process/NSProcessFacts.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Replaceable.h>
#include <sys/utsname.h>

#include <fstream>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr NSInteger kMostOfAPart = 1'000'000;

NSSystemNames namesOfSystem() {
  utsname names{};
  if (::uname(&names) != 0) return {};
  return {names.sysname, names.nodename, names.release, names.version, names.machine};
}

/// The value of `VERSION_ID`; "" where there is none.
std::string versionOfRelease() {
  constexpr std::string_view kKey = "VERSION_ID=";
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
      if (line.starts_with(kKey)) return line.substr(kKey.size());
  }
  return "";
}

std::shared_ptr<const NSProcessFacts> factsOfMachine() {
  NSProcessFacts facts{NSVersionFromText(versionOfRelease()), namesOfSystem()};
  if (facts.operatingSystemVersion == NSOperatingSystemVersion{})
    facts.operatingSystemVersion = NSVersionFromText(facts.systemNames.release);
  return std::make_shared<const NSProcessFacts>(std::move(facts));
}

constinit internal::base::Replaceable<const NSProcessFacts> facts(&factsOfMachine);

}  // namespace

std::shared_ptr<const NSProcessFacts> NSCurrentProcessFacts() { return facts.current(); }

std::shared_ptr<const NSProcessFacts> NSSetProcessFacts(
    std::shared_ptr<const NSProcessFacts> newFacts) {
  return facts.exchange(std::move(newFacts));
}

NSOperatingSystemVersion NSVersionFromText(std::string_view text) {
  NSOperatingSystemVersion version;
  if (text.starts_with('"') || text.starts_with('\'')) text.remove_prefix(1);
  for (NSInteger* part : {&version.majorVersion, &version.minorVersion, &version.patchVersion}) {
    while (!text.empty() && internal::base::isDigit(text.front())) {
      *part = *part >= kMostOfAPart ? *part : *part * 10 + (text.front() - '0');
      text.remove_prefix(1);
    }
    if (!text.starts_with('.')) break;
    text.remove_prefix(1);
  }
  return version;
}

}  // namespace ORLFoundation
