/// Keychain items in the desktop's Secret Service (GNOME Keyring, KWallet, KeePassXC ...), by
/// libsecret. The library itself links neither libsecret nor GLib: who uses this takes the
/// component SecretService of its CMake package.
///
///     SecSetItemStore(std::make_shared<SecretServiceItemStore>());
///
/// Items go into the service's default collection, each with all its attributes and with whether it
/// is synchronizable, said in so many words. Attributes are not secret there: a service may show
/// and keep account names in the clear; whether it encrypts passwords at rest it does not tell.
#pragma once

#include <ORLFoundation/platform/keychain/SecItemStore.h>

#include <chrono>
#include <memory>
#include <optional>

namespace ORLFoundation {

struct SecretServiceOptions {
  /// Whether the service may ask the user, to unlock the collection for instance. nil: where
  /// DISPLAY or WAYLAND_DISPLAY names a display that could show it.
  std::optional<bool> mayPrompt = std::nullopt;
  /// How long an operation may take in which the user is not asked, and how long the user may take.
  std::chrono::milliseconds limit{4000};
  std::chrono::milliseconds promptLimit{120'000};
};

/// Answers, beside those of every store:
///
///     errSecNotAvailable            no session bus, no service, or none that answers in time
///     errSecNoDefaultKeychain       no default collection, or one that ends with the session
///     errSecInteractionNotAllowed   locked, and the user may not be asked
///     errSecUserCanceled            the user was asked and declined
///     errSecAuthFailed              the service or the bus denies access
///     errSecParam                   an attribute that is no UTF-8, or has a zero byte in it
///     errSecIO                      the service fails in another way
///
/// Safe on any thread, one operation at a time; needs no main loop. A service that starts anew is
/// found again by the next operation. When two processes add equal items in the same instant, both
/// may stand there. The connection to the session bus is the one that GLib shares within the
/// process; from the first operation on, its end no longer ends the process.
class SecretServiceItemStore final : public SecItemStore {
 public:
  explicit SecretServiceItemStore(const SecretServiceOptions& options = {});
  ~SecretServiceItemStore() override;

  /// Lets `SecItemStoreNamed` make such stores, as "secret-service".
  static void registerStore();

  /// "secret-service", which lasts; encryption at rest is unknown.
  [[nodiscard]] SecItemBackend backend() const override;
  [[nodiscard]] OSStatus copyMatching(const NSDictionary& query, id& result) override;
  [[nodiscard]] OSStatus add(const NSDictionary& attributes) override;
  /// One match after the other: a failure leaves those before it changed.
  [[nodiscard]] OSStatus update(const NSDictionary& query,
                                const NSDictionary& attributesToUpdate) override;
  /// One match after the other, likewise.
  [[nodiscard]] OSStatus remove(const NSDictionary& query) override;

 private:
  struct Connection;
  const std::unique_ptr<Connection> connection_;
};

}  // namespace ORLFoundation
