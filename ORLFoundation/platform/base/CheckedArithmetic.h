/// Sums that tell when they leave their type.
///
///     const auto months = checkedProduct(years, NSInteger{12});
///     if (!months) return std::nullopt;
#pragma once

#include <concepts>
#include <optional>
#include <type_traits>

namespace ORLFoundation::internal::base {

/// nil where the type cannot hold the result.
template <std::integral Integer>
[[nodiscard]] constexpr std::optional<Integer> checkedSum(
    Integer left, std::type_identity_t<Integer> right) noexcept {
  Integer result{};
  return __builtin_add_overflow(left, right, &result) ? std::nullopt : std::optional(result);
}

/// The same for left - right.
template <std::integral Integer>
[[nodiscard]] constexpr std::optional<Integer> checkedDifference(
    Integer left, std::type_identity_t<Integer> right) noexcept {
  Integer result{};
  return __builtin_sub_overflow(left, right, &result) ? std::nullopt : std::optional(result);
}

template <std::integral Integer>
[[nodiscard]] constexpr std::optional<Integer> checkedProduct(
    Integer left, std::type_identity_t<Integer> right) noexcept {
  Integer result{};
  return __builtin_mul_overflow(left, right, &result) ? std::nullopt : std::optional(result);
}

}  // namespace ORLFoundation::internal::base
