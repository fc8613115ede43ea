/// Addresses that hold what they stand for: `data:text/plain;base64,aGVsbG8=`.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::net {

struct DataAddress {
  std::string mediaType;  ///< With its parameters; "text/plain;charset=US-ASCII" where none stands.
  std::string bytes;
};

/// nil for another kind of address, one without a comma, and bytes that are not what they are said
/// to be. What follows "#" is no part of it.
[[nodiscard]] std::optional<DataAddress> dataAddressIn(std::string_view address);

}  // namespace ORLFoundation::internal::net
