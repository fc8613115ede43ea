/// Random bytes that no one can foretell.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace ORLFoundation {

/// Where random bytes come from. A test installs its own; without one they come from OpenSSL's
/// generator, which the system's feeds.
class SecRandomSource {
 public:
  virtual ~SecRandomSource() = default;

  /// Fills the bytes. False, with the reason in `errno`, where it cannot. Any thread.
  [[nodiscard]] virtual bool copyBytes(std::span<std::uint8_t> bytes) = 0;
};

/// Which source `SecRandomCopyBytes` asks.
enum SecRandomRef : std::uint8_t { kSecRandomDefault = 0 };

/// `SecRandomCopyBytes`  Fills `count` bytes. 0, or -1 with the reason in `errno`; the bytes are
/// undefined then.
[[nodiscard]] int SecRandomCopyBytes(SecRandomRef random, std::size_t count, std::uint8_t* bytes);

/// Installs a source, null for the default, and gives the one before it. Any thread.
std::shared_ptr<SecRandomSource> SecSetRandomSource(std::shared_ptr<SecRandomSource> source);

}  // namespace ORLFoundation
