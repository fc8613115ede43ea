/// The error of a service's reply that lacks what it must have.
#pragma once

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <memory>
#include <optional>
#include <string_view>

namespace ORLFoundation {

/// Under this key of the user information stands the array of the key paths that are missing.
inline constexpr std::string_view ORLFServiceResponseErrorUserInfoMissingFieldsKey =
    "ORLFServiceResponseMissingFields";
/// The code, in `NSCocoaErrorDomain`.
inline constexpr NSInteger NSCoderValueNotFoundError = 4865;

/// `orlfServiceResponseErrorForMissingFields:message:`  The message is the error's description, and
/// its recovery suggestion lists the fields: "The following fields are missing a, b". What is nil
/// is left out of the user information; without a field there is no suggestion.
[[nodiscard]] std::shared_ptr<NSError> orlfServiceResponseErrorForMissingFields(
    const std::shared_ptr<NSArray>& missingFields, std::optional<std::string_view> message);

}  // namespace ORLFoundation
