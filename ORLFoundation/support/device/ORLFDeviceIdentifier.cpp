
#include <ORLFoundation/support/device/ORLFDeviceIdentifier.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/value/NSUUID.h>
#include <ORLFoundation/support/device/internal/ORLFMachineIdentifier.h>

#include <algorithm>
#include <array>
#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/string_generator.hpp>
#include <fstream>

namespace ORLFoundation {
namespace {

constexpr std::size_t kDigits = 32;
/// The key of this library; it never changes.
constexpr const char* kKey = "6f0a4a7e-93b6-4f7c-9f0e-5d2c1a8b7e34";

bool isIdentifier(std::string_view text) {
  return text.size() == kDigits &&
         text.find_first_not_of(internal::base::kLowerHexDigits) == text.npos &&
         std::ranges::any_of(text, [](char c) { return c != '0'; });
}

}  // namespace

namespace internal::device {

std::optional<std::string> machineIdentifierIn(std::span<const std::string> paths) {
  for (const std::string& path : paths) {
    std::array<char, kDigits + 1> start{};
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), start.size());
    const std::string_view text(start.data(), static_cast<std::size_t>(file.gcount()));
    const std::string_view digits = text.substr(0, kDigits);
    const std::string_view rest = text.substr(digits.size());
    if (isIdentifier(digits) && (rest.empty() || rest == "\n")) return std::string(digits);
  }
  return std::nullopt;
}

std::string deviceIdentifierOf(std::string_view machine) {
  const boost::uuids::name_generator_sha1 generate(boost::uuids::string_generator()(kKey));
  const boost::uuids::uuid uuid = generate(machine.data(), machine.size());
  NSUUID::Bytes bytes;
  std::copy(uuid.begin(), uuid.end(), bytes.begin());
  return NSUUID(bytes).UUIDString();
}

}  // namespace internal::device

std::string orlfDeviceIdentifier(const NSProcessInfo& processInfo) {
  static const std::array<std::string, 2> paths{"/etc/machine-id", "/var/lib/dbus/machine-id"};
  const auto identifier = internal::device::machineIdentifierIn(paths);
  return internal::device::deviceIdentifierOf(identifier ? *identifier
                                                         : "host:" + processInfo.hostName());
}

}  // namespace ORLFoundation
