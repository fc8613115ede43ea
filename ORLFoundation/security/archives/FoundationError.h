/// Failures that are this library's own, as errors with a text for people.
///
///     if (isFoundationError(*error, FoundationError::archiveRequiresPassword)) ask();
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Of errors whose codes are those of `FoundationError`.
inline constexpr std::string_view FoundationErrorDomain = "ORLFoundation.FoundationError";

enum class FoundationError : NSInteger {
  /// What no other error tells of: no memory, no random bytes.
  unknown,
  /// A stream could not be made: an address that names no file, a file or folder that does not
  /// open.
  /// The error under it tells why.
  nilUnwrappedOptional,
  /// A protected archive was to be extracted, or made, without a password.
  archiveRequiresPassword,
};

/// `localizedDescription`  In English; of a value outside the enumeration, that of `unknown`.
[[nodiscard]] std::string localizedDescription(FoundationError error);
/// The record of such a failure. With an error under it the text goes on with that one's.
[[nodiscard]] std::shared_ptr<const NSError> NSErrorOfFoundationError(
    FoundationError error, const std::shared_ptr<const NSError>& underlying = nullptr);
/// Whether a record tells of the failure.
[[nodiscard]] bool isFoundationError(const NSError& record, FoundationError error) noexcept;

}  // namespace ORLFoundation
