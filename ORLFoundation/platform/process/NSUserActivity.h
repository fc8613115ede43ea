/// Something that the user is doing and that a program can take up, such as a page of a web site
/// that the program shows too.
///
///     auto activity = std::make_shared<NSUserActivity>(NSUserActivityTypeBrowsingWeb);
///     activity->setWebpageURL(NSURL::URLWithString("https://example.com/accounts/7"));
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

/// The type of an activity that follows a link.
inline constexpr std::string_view NSUserActivityTypeBrowsingWeb = "NSUserActivityTypeBrowsingWeb";

class NSUserActivity final : public NSObject {
 public:
  /// `initWithActivityType:`
  explicit NSUserActivity(std::string_view activityType) : activityType_(activityType) {}

  [[nodiscard]] const std::string& activityType() const noexcept { return activityType_; }
  /// nil until it is set. Safe on any thread.
  [[nodiscard]] std::optional<NSURL> webpageURL() const {
    const std::lock_guard guard(lock_);
    return webpageURL_;
  }
  void setWebpageURL(std::optional<NSURL> url) {
    const std::lock_guard guard(lock_);
    webpageURL_ = std::move(url);
  }

  [[nodiscard]] std::string className() const override { return "NSUserActivity"; }

 private:
  const std::string activityType_;
  mutable std::mutex lock_;
  std::optional<NSURL> webpageURL_;
};

}  // namespace ORLFoundation
