#include <ORLFoundation/datetext/inference/internal/ORLFDateRoles.h>

namespace ORLFoundation::internal::inference {
namespace {

constexpr NSInteger kDay = 1, kMonth = 2, kYear = 4;
constexpr int kRolesPerPlace = 3;

constexpr NSInteger rolesOfNumber(NSInteger number) noexcept {
  if (number == 0) return kYear;
  return kYear | (number < 32 ? kDay : 0) | (number < 13 ? kMonth : 0);
}

constexpr bool isOneBit(NSInteger bits) noexcept { return bits != 0 && (bits & (bits - 1)) == 0; }

/// The bits of one place, and those of one role at every place.
constexpr NSInteger placeBits(int place) noexcept {
  return NSInteger{7} << (kRolesPerPlace * place);
}
constexpr NSInteger roleBits(NSInteger role) noexcept { return role | role << 3 | role << 6; }

/// When one role remains at a place, no other place keeps it.
constexpr NSInteger claimRoleOfPlace(NSInteger bits, int place) noexcept {
  const NSInteger claimed = bits & placeBits(place);
  if (!isOneBit(claimed)) return bits;
  const NSInteger role = claimed >> (kRolesPerPlace * place);
  return bits & ~(roleBits(role) & ~claimed);
}

/// When one place can still take a role, that place keeps no other.
constexpr NSInteger claimPlaceOfRole(NSInteger bits, NSInteger role) noexcept {
  const NSInteger claimed = bits & roleBits(role);
  if (!isOneBit(claimed)) return bits;
  for (int place = 0; place < 3; ++place)
    if ((claimed & placeBits(place)) != 0) bits &= ~(placeBits(place) & ~claimed);
  return bits;
}

}  // namespace

NSInteger rolesOfNumbers(const std::array<NSInteger, 3>& numbers) noexcept {
  return rolesOfNumber(numbers[0]) | rolesOfNumber(numbers[1]) << kRolesPerPlace |
         rolesOfNumber(numbers[2]) << (2 * kRolesPerPlace);
}

// The order of the six rules decides what is left where numbers contradict each other.
NSInteger narrowedRoles(NSInteger bits) noexcept {
  for (NSInteger before = ~bits; before != bits;) {
    before = bits;
    for (const int place : {2, 1, 0}) bits = claimRoleOfPlace(bits, place);
    for (const NSInteger role : {kYear, kMonth, kDay}) bits = claimPlaceOfRole(bits, role);
  }
  return bits;
}

}  // namespace ORLFoundation::internal::inference
