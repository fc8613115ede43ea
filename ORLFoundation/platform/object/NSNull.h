/// The marker that stands for "no value" where nil cannot stand: in arrays and dictionaries.
#pragma once

namespace ORLFoundation {

struct NSNull {
  /// `null`
  [[nodiscard]] static constexpr NSNull null() noexcept { return {}; }
  friend constexpr bool operator==(NSNull, NSNull) noexcept { return true; }
};

}  // namespace ORLFoundation
