/// The errors that say that the user has cancelled, which are no failures to be reported.
///
///     if (!orlfIsUserCanceledError(*error)) report(*error);
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>

#include <memory>

namespace ORLFoundation {

/// Code in `NSCocoaErrorDomain`.
inline constexpr NSInteger NSUserCancelledError = 3072;

/// `orlfUserCancelledErrorWithUserInfo:`  `NSUserCancelledError` with the user information; nil
/// stands for none.
[[nodiscard]] std::shared_ptr<NSError> orlfUserCancelledErrorWithUserInfo(
    std::shared_ptr<NSDictionary> userInfo);

/// `orlfIsUserCanceledError`  Whether the error is that or `NSURLErrorCancelled`; the same codes in
/// other domains mean other things.
[[nodiscard]] bool orlfIsUserCanceledError(const NSError& error);

}  // namespace ORLFoundation
