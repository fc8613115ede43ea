/// Worker threads outlive main. What OpenSSL keeps for each of them would be forgotten by its
/// clean-up at the end of the process, which leak checkers then report: test programs do without
/// that clean-up. Where a program has no OpenSSL, its function is null here.
#include <cstdint>

extern "C" [[gnu::weak]] int OPENSSL_init_crypto(std::uint64_t options, const void* settings);

namespace {

constexpr std::uint64_t kNoCleanUpAtExit = 0x80000;  // OPENSSL_INIT_NO_ATEXIT

[[maybe_unused]] const bool isKept =
    OPENSSL_init_crypto != nullptr && OPENSSL_init_crypto(kNoCleanUpAtExit, nullptr) == 1;

}  // namespace
