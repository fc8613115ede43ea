/// Whether a place in the network can be reached, and a notification when that changes.
///
///     const auto bank = ORLFReachability::reachabilityWithHostName("example.com");
///     token = NSNotificationCenter::defaultCenter()->addObserverForName(
///         std::string(kReachabilityChangedNotification), bank,
///         [&](const NSNotification&) { show(bank->currentReachabilityStatus()); });
///     bank->startNotifier();
///
/// SCNetworkReachability.h tells what the flags stand for, and how names are looked up.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/reachability/SCNetworkReachability.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Posted on the run loop's thread with the `ORLFReachability` as its object.
inline constexpr std::string_view kReachabilityChangedNotification =
    "kNetworkReachabilityChangedNotification";

/// Whether a place is reached.
enum NetworkStatus : std::int64_t { NotReachable = 0, Reachable = 1 };

/// Any thread may ask.
class ORLFReachability final : public NSObject {
 public:
  /// `reachabilityWithHostName:`  null for no name.
  [[nodiscard]] static std::shared_ptr<ORLFReachability> reachabilityWithHostName(
      std::string_view hostName);
  /// `reachabilityWithAddress:`  null for null, and for what is neither IPv4 nor IPv6.
  [[nodiscard]] static std::shared_ptr<ORLFReachability> reachabilityWithAddress(
      const sockaddr* address);
  /// `reachabilityForInternetConnection`  Whether any route leads on to the internet: of 0.0.0.0.
  [[nodiscard]] static std::shared_ptr<ORLFReachability> reachabilityForInternetConnection();

  /// Use one of the operations above.
  explicit ORLFReachability(SCNetworkReachabilityRef reference);
  /// Stops the notifier.
  ~ORLFReachability() override;

  /// `startNotifier`  Posts the notification each time the flags have changed, for as long as the
  /// calling thread runs its loop. false where the network cannot be listened to.
  bool startNotifier();
  /// `stopNotifier`  On the thread that started it; on another one nothing ends.
  void stopNotifier();

  /// `networkStatusForFlags:`  1 where the flags say that the place is reached, without a
  /// connection to be made first or with one that traffic or demand makes without anybody's help.
  [[nodiscard]] NetworkStatus networkStatusForFlags(
      SCNetworkReachabilityFlags flags) const noexcept;
  /// `connectionRequired`  false where the flags cannot be read.
  [[nodiscard]] bool connectionRequired() const;
  /// `currentReachabilityStatus`  0 where the flags cannot be read: a name is being looked up.
  [[nodiscard]] NetworkStatus currentReachabilityStatus() const;
  [[nodiscard]] const SCNetworkReachabilityRef& reachabilityRef() const noexcept {
    return reachabilityRef_;
  }

  [[nodiscard]] std::string className() const override { return "ORLFReachability"; }

 private:
  const SCNetworkReachabilityRef reachabilityRef_;
};

}  // namespace ORLFoundation
