/// The failures of loads, in one table.
#pragma once

#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {
class NSError;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::net {

/// A record of `NSURLErrorDomain` with a text for people, and the library's reason where there is
/// one. No address stands in it: addresses hold secrets.
[[nodiscard]] std::shared_ptr<const NSError> failure(NSURLError code, std::string_view reason = {});

/// What else is known of a transfer that failed.
struct CurlFailure {
  int code = 0;          ///< A `CURLcode`.
  long verified = 0;     ///< What OpenSSL says of the server's certificate; 0 for nothing wrong.
  long systemError = 0;  ///< errno of a connection that was refused.
};
[[nodiscard]] NSURLError codeOf(const CurlFailure& failure) noexcept;
/// The code for a file that cannot be read.
[[nodiscard]] NSURLError codeOfFileError(int systemError) noexcept;

}  // namespace ORLFoundation::internal::net
