
#include <ORLFoundation/platform/image/CGDataProvider.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace ORLFoundation {
namespace {

struct Released {
  int times = 0;
  const void* data = nullptr;
  std::size_t size = 0;
};

void recordRelease(void* info, const void* data, std::size_t size) {
  auto& released = *static_cast<Released*>(info);
  released = {released.times + 1, data, size};
}

TEST(CGDataProvider, GivesItsBytesBackOnceWhenTheLastReferenceGoes) {
  const std::array<std::uint8_t, 3> bytes{1, 2, 3};
  Released released;
  auto provider = std::make_shared<CGDataProvider>(&released, bytes.data(), 3, &recordRelease);
  auto second = provider;
  provider.reset();
  EXPECT_EQ(released.times, 0);
  EXPECT_TRUE(std::ranges::equal(second->bytes(), bytes));
  second.reset();
  EXPECT_EQ(released.times, 1);
  EXPECT_EQ(released.data, bytes.data());
  EXPECT_EQ(released.size, 3U);
}

TEST(CGDataProvider, LeavesBytesWithoutACallbackAlone) {
  const std::array<std::uint8_t, 1> bytes{7};
  EXPECT_EQ(CGDataProvider(nullptr, bytes.data(), 1, nullptr).bytes().front(), 7);
}

TEST(CGDataProvider, KeepsBytesOfItsOwn) {
  const CGDataProviderRef provider = CGDataProvider::providerWithBytes({1, 2, 3});
  EXPECT_EQ(provider->bytes().size(), 3U);
  EXPECT_EQ(provider->bytes()[2], 3);
  EXPECT_TRUE(CGDataProvider::providerWithBytes({})->bytes().empty());
}

}  // namespace
}  // namespace ORLFoundation
