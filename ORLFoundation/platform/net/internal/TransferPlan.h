/// What a request comes to under its session's configuration.
#pragma once

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/net/internal/LoadErrors.h>
#include <ORLFoundation/platform/net/internal/Redirect.h>

#include <optional>
#include <string>

namespace ORLFoundation::internal::net {

struct TransferPlan {
  std::optional<NSURLError> failure;  ///< It is not to be loaded at all.
  bool isLocal = false;               ///< A file, or data.
  std::string origin;                 ///< The server's scheme, name and port.
  Hop hop;
  bool usesCookies = true;
  bool decodes =
      true;  ///< Whether bodies come decoded: the request does not say itself what it takes.
  double timeout = 60.0;  ///< Seconds of silence; infinity for none.
  double resourceTimeout = 0.0;
};

[[nodiscard]] TransferPlan planOf(const NSURLRequest& request,
                                  const NSURLSessionConfiguration& configuration);

}  // namespace ORLFoundation::internal::net
