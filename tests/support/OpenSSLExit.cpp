/// Worker threads outlive main. What OpenSSL keeps for each of them would be forgotten by its
/// clean-up at the end of the process, which leak checkers then report: test programs do without
/// that clean-up. Where a program has no OpenSSL, its function is null here.
#include <gtest/gtest.h>

#include <cstdint>

extern "C" [[gnu::weak]] int OPENSSL_init_crypto(std::uint64_t options, const void* settings);

namespace {

/// Set up when main has set what it wants to set of OpenSSL before its start.
class NoCleanUpAtExit final : public testing::Environment {
 public:
  void SetUp() override {
    constexpr std::uint64_t kNoCleanUpAtExit = 0x80000;  // OPENSSL_INIT_NO_ATEXIT
    if (OPENSSL_init_crypto == nullptr) return;
    ASSERT_EQ(OPENSSL_init_crypto(kNoCleanUpAtExit, nullptr), 1);
  }
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new NoCleanUpAtExit);

}  // namespace
