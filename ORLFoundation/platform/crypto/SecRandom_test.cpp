
#include <ORLFoundation/platform/crypto/SecRandom.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>

namespace ORLFoundation {
namespace {

/// Gives one byte over and over, or fails.
class FixedSource final : public SecRandomSource {
 public:
  explicit FixedSource(int byte) : byte_(byte) {}
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    std::fill(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(byte_));
    return byte_ >= 0;
  }

 private:
  const int byte_;
};

TEST(SecRandom, GivesOtherBytesEachTime) {
  std::array<std::uint8_t, 32> first{}, second{};
  EXPECT_EQ(SecRandomCopyBytes(kSecRandomDefault, first.size(), first.data()), 0);
  EXPECT_EQ(SecRandomCopyBytes(kSecRandomDefault, second.size(), second.data()), 0);
  EXPECT_NE(first, second);
  EXPECT_EQ(SecRandomCopyBytes(kSecRandomDefault, 0, nullptr), 0);
}

TEST(SecRandom, AsksTheSourceThatIsInstalled) {
  std::array<std::uint8_t, 4> bytes{};
  {
    const Replaced source(SecSetRandomSource, std::make_shared<FixedSource>(7));
    EXPECT_EQ(SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()), 0);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 4>{7, 7, 7, 7}));
    const Replaced broken(SecSetRandomSource, std::make_shared<FixedSource>(-1));
    EXPECT_EQ(SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()), -1);
  }
  std::array<std::uint8_t, 16> again{};
  EXPECT_EQ(SecRandomCopyBytes(kSecRandomDefault, again.size(), again.data()), 0);
  EXPECT_NE(again, (std::array<std::uint8_t, 16>{}));
}

}  // namespace
}  // namespace ORLFoundation
