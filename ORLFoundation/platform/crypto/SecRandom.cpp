#include <ORLFoundation/platform/crypto/SecRandom.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/crypto/internal/OpenSSLState.h>
#include <openssl/rand.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

namespace ORLFoundation {
namespace {

class OpenSSLRandomSource final : public SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    internal::crypto::keepOpenSSLState();
    // OpenSSL counts in `int`.
    constexpr std::size_t kMostAtOnce = std::numeric_limits<int>::max();
    while (!bytes.empty()) {
      const std::size_t count = std::min(kMostAtOnce, bytes.size());
      if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1) {
        errno = EIO;
        return false;
      }
      bytes = bytes.subspan(count);
    }
    return true;
  }
};

constinit internal::base::Replaceable<SecRandomSource> sources(
    []() -> std::shared_ptr<SecRandomSource> { return std::make_shared<OpenSSLRandomSource>(); });

}  // namespace

int SecRandomCopyBytes(SecRandomRef /*random*/, std::size_t count, std::uint8_t* bytes) {
  return sources.current()->copyBytes({bytes, count}) ? 0 : -1;
}

std::shared_ptr<SecRandomSource> SecSetRandomSource(std::shared_ptr<SecRandomSource> source) {
  return sources.exchangeMade(std::move(source));
}

}  // namespace ORLFoundation
