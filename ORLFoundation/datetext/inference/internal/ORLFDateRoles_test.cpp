#include <ORLFoundation/datetext/inference/internal/ORLFDateRoles.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace ORLFoundation::internal::inference {
namespace {

struct RoleCase {
  std::string_view name;
  std::array<NSInteger, 3> numbers;
  NSInteger roles;
};
const RoleCase kRoleCases[] = {
    {"ZeroIsAYearAlone", {0, 0, 0}, 4 | 32 | 256},
    {"TwelveIsAnything", {12, 12, 12}, 511},
    {"ThirteenIsNoMonth", {13, 13, 13}, 511 & ~(2 | 16 | 128)},
    {"ThirtyOneIsADay", {31, 1, 1}, 511 & ~2},
    {"ThirtyTwoIsAYearAlone", {32, 32, 32}, 4 | 32 | 256},
    {"NegativeIsAnything", {-1, INT64_MIN, -2000}, 511},
    {"TheLargestIsAYear", {INT64_MAX, 1, 1}, 511 & ~(1 | 2)},
};

TEST(DateRoles, OfNumbers) {
  for (const RoleCase& row : kRoleCases)
    EXPECT_EQ(rolesOfNumbers(row.numbers), row.roles) << row.name;
}

TEST(DateRoles, OrdersNeedTheBitsOfTheirPlaces) {
  for (const DateOrder& order : kDateOrders) {
    EXPECT_EQ(order.bits,
              (1 << (3 * order.day)) | (2 << (3 * order.month)) | (4 << (3 * order.year)))
        << order.format;
    EXPECT_EQ(order.day + order.month + order.year, 3U) << order.format;
  }
}

struct NarrowingCase {
  std::string_view name;
  NSInteger bits, narrowed;
};
const NarrowingCase kNarrowingCases[] = {
    {"NothingToSay", 511, 511},
    {"NoRoles", 0, 0},
    {"TheThirdPlaceClaimsTheYear", 511 & ~(64 | 128), 1 | 2 | 8 | 16 | 256},
    {"TheSecondPlaceClaimsTheMonth", 511 & ~(8 | 32), 1 | 4 | 16 | 64 | 256},
    {"TheFirstPlaceClaimsTheDay", 511 & ~(2 | 4), 1 | 16 | 32 | 128 | 256},
    {"TheYearClaimsTheLastPlaceForIt", 511 & ~(4 | 32), 1 | 2 | 8 | 16 | 256},
    {"TheMonthClaimsTheLastPlaceForIt", 511 & ~(2 | 16), 1 | 4 | 8 | 32 | 128},
    {"TheDayClaimsTheLastPlaceForIt", 511 & ~(1 | 64), 2 | 4 | 8 | 128 | 256},
    // The third place comes first: it keeps the year that the first place could have had alone.
    {"OfThreeYearsTheThirdStays", 4 | 32 | 256, 256},
    // The month claims the third place before the day can.
    {"OfTwoYearsTheLaterStays", 4 | 32 | 64 | 128, 32 | 128},
    {"ChainsToTheEnd", 256 | 128 | 64 | 16 | 8 | 1, 1 | 16 | 256},
};

TEST(DateRoles, AreNarrowed) {
  for (const NarrowingCase& row : kNarrowingCases)
    EXPECT_EQ(narrowedRoles(row.bits), row.narrowed) << row.name;
}

/// The rules word for word, on a table of three places by three roles.
class Grid {
 public:
  explicit Grid(NSInteger bits) {
    for (std::size_t place = 0; place < 3; ++place)
      for (std::size_t role = 0; role < 3; ++role)
        open_[place][role] = (bits >> (3 * place + role) & 1) != 0;
  }

  [[nodiscard]] NSInteger bits() const {
    NSInteger bits = 0;
    for (std::size_t place = 0; place < 3; ++place)
      for (std::size_t role = 0; role < 3; ++role)
        if (open_[place][role]) bits |= NSInteger{1} << (3 * place + role);
    return bits;
  }

  void narrow() {
    for (bool removed = true; removed;) {
      removed = false;
      for (const std::size_t place : {2U, 1U, 0U}) removed |= takeRole(place);
      for (const std::size_t role : {2U, 1U, 0U}) removed |= takePlace(role);
    }
  }

 private:
  /// When exactly one role remains at the place, it is removed from the two others.
  bool takeRole(std::size_t place) {
    std::vector<std::size_t> roles;
    for (std::size_t role = 0; role < 3; ++role)
      if (open_[place][role]) roles.push_back(role);
    if (roles.size() != 1) return false;
    bool removed = false;
    for (std::size_t other = 0; other < 3; ++other) {
      if (other == place || !open_[other][roles[0]]) continue;
      open_[other][roles[0]] = false;
      removed = true;
    }
    return removed;
  }

  /// When exactly one place can still take the role, all other roles are removed from that place.
  bool takePlace(std::size_t role) {
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < 3; ++place)
      if (open_[place][role]) places.push_back(place);
    if (places.size() != 1) return false;
    bool removed = false;
    for (std::size_t other = 0; other < 3; ++other) {
      if (other == role || !open_[places[0]][other]) continue;
      open_[places[0]][other] = false;
      removed = true;
    }
    return removed;
  }

  bool open_[3][3] = {};
};

TEST(DateRoles, AreNarrowedByTheRulesForEverySetOfRoles) {
  for (NSInteger bits = 0; bits <= kAllRoles; ++bits) {
    Grid grid(bits);
    grid.narrow();
    EXPECT_EQ(narrowedRoles(bits), grid.bits()) << bits;
    EXPECT_EQ(narrowedRoles(grid.bits()), grid.bits()) << bits;
  }
}

TEST(DateRoles, KeepBitsBeyondTheNine) {
  EXPECT_EQ(narrowedRoles(1024 | 511), 1024 | 511);
  EXPECT_EQ(narrowedRoles(~NSInteger{0}), ~NSInteger{0});
}

}  // namespace
}  // namespace ORLFoundation::internal::inference
