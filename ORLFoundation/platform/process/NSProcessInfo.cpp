
#include <ORLFoundation/platform/process/NSProcessInfo.h>

#include <ORLFoundation/platform/process/NSProcessFacts.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace ORLFoundation {

std::shared_ptr<NSProcessInfo> NSProcessInfo::processInfo() {
  static const auto info = std::make_shared<NSProcessInfo>();
  return info;
}

std::string NSProcessInfo::processName() const {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).filename().string();
}

std::int32_t NSProcessInfo::processIdentifier() const noexcept { return ::getpid(); }

std::string NSProcessInfo::hostName() const {
  std::array<char, 256> name{};
  // The last byte stays zero where a longer name is cut.
  return ::gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : "";
}

NSOperatingSystemVersion NSProcessInfo::operatingSystemVersion() const {
  return NSCurrentProcessFacts()->operatingSystemVersion;
}

}  // namespace ORLFoundation
