/// What a session's caller asks of an answer beyond what the platform tells.
///
///     const auto http = orlfHTTPURLResponse(task->response());
///     if (http && http->statusCode() == 200) use(orlfLastModifiedDate(*http));
#pragma once

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <optional>

namespace ORLFoundation {

/// `orlfHTTPURLResponse`  The response itself where it is one of HTTP, else null, as for null.
[[nodiscard]] std::shared_ptr<NSHTTPURLResponse> orlfHTTPURLResponse(
    const std::shared_ptr<NSURLResponse>& response);

/// `orlfLastModifiedDate`  The date in the header "Last-Modified", whatever the case of its name:
/// "Sun, 06 Nov 1994 08:49:37 GMT". nil where there is no such header, and for a text that is no
/// date of this form.
[[nodiscard]] std::optional<NSDate> orlfLastModifiedDate(const NSHTTPURLResponse& response);

}  // namespace ORLFoundation
