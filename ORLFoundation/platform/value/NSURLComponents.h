/// The parts of an address as they are taken from it.
///
///     NSURLComponents::componentsWithURL(NSURL::URLWithString("https://x.org/a%20b/"), true)
///         ->path();   // "/a b/"
#pragma once

#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>
#include <string>
#include <utility>

namespace ORLFoundation {

class NSURLComponents {
 public:
  /// `componentsWithURL:resolvingAgainstBaseURL:`  nil for nil. Addresses here have no base, so
  /// both ways of resolving give the same.
  [[nodiscard]] static std::optional<NSURLComponents> componentsWithURL(
      const std::optional<NSURL>& url, bool resolvingAgainstBaseURL);

  /// `path`  With its escapes resolved and its slashes as they are, one at the end included; "" for
  /// an address without a path. nil when the escapes do not stand for UTF-8.
  [[nodiscard]] std::optional<std::string> path() const;
  /// `percentEncodedPath`  As it stands in the address.
  [[nodiscard]] std::string percentEncodedPath() const;
  /// As the address has them.
  [[nodiscard]] std::optional<std::string> scheme() const { return url_.scheme(); }
  [[nodiscard]] std::optional<std::string> host() const { return url_.host(); }
  [[nodiscard]] std::optional<NSInteger> port() const { return url_.port(); }
  [[nodiscard]] std::optional<std::string> percentEncodedQuery() const { return url_.query(); }
  [[nodiscard]] std::optional<std::string> percentEncodedFragment() const {
    return url_.fragment();
  }
  [[nodiscard]] const NSURL& URL() const noexcept { return url_; }

 private:
  explicit NSURLComponents(NSURL url) : url_(std::move(url)) {}

  NSURL url_;
};

}  // namespace ORLFoundation
