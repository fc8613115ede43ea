/// What the status of an answer says about it.
#pragma once

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <memory>

namespace ORLFoundation::internal::session {

inline constexpr NSInteger kUnauthorized = 401;

/// 0 for what is no HTTP answer.
[[nodiscard]] NSInteger statusOf(const std::shared_ptr<NSURLResponse>& response);

/// For an HTTP answer of another status than 200: -1100 of `NSURLErrorDomain` for 404, -1 for all
/// others, with the status under "statusCode" and its text under "statusDescription". Else null.
[[nodiscard]] std::shared_ptr<const NSError> errorForStatusOf(
    const std::shared_ptr<NSURLResponse>& response);

}  // namespace ORLFoundation::internal::session
