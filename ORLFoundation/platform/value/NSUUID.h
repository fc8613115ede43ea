/// A universally unique identifier: 16 bytes.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSUUID {
 public:
  using Bytes = std::array<std::uint8_t, 16>;

  /// All bytes zero.
  constexpr NSUUID() noexcept = default;
  /// `initWithUUIDBytes:`
  explicit constexpr NSUUID(const Bytes& bytes) noexcept : bytes_(bytes) {}
  /// `UUID`  A new random identifier, version 4. Safe on any thread.
  [[nodiscard]] static NSUUID UUID();
  /// `initWithUUIDString:`  Takes 36 characters, hex digits of either case in groups of 8, 4, 4, 4
  /// and 12; nil for anything else.
  [[nodiscard]] static std::optional<NSUUID> initWithUUIDString(std::string_view text);

  [[nodiscard]] constexpr const Bytes& UUIDBytes() const noexcept { return bytes_; }
  /// `UUIDString`  "E621E1F8-C36C-495A-93FC-0C247A3E6E5F", upper case.
  [[nodiscard]] std::string UUIDString() const;
  [[nodiscard]] std::string description() const { return UUIDString(); }
  [[nodiscard]] NSUInteger hash() const noexcept;

  friend bool operator==(const NSUUID&, const NSUUID&) = default;

 private:
  Bytes bytes_{};
};

}  // namespace ORLFoundation

template <>
struct std::hash<ORLFoundation::NSUUID> {
  std::size_t operator()(const ORLFoundation::NSUUID& uuid) const noexcept { return uuid.hash(); }
};
