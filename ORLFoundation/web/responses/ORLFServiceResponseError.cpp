
#include <ORLFoundation/web/responses/ORLFServiceResponseError.h>

namespace ORLFoundation {

std::shared_ptr<NSError> orlfServiceResponseErrorForMissingFields(
    const std::shared_ptr<NSArray>& missingFields, std::optional<std::string_view> message) {
  NSDictionary::Entries information;
  if (missingFields)
    information.emplace_back(ORLFServiceResponseErrorUserInfoMissingFieldsKey, missingFields);
  if (message) information.emplace_back(NSLocalizedDescriptionKey, *message);
  if (missingFields && missingFields->count() > 0) {
    std::string suggestion = "The following fields are missing ";
    for (NSUInteger i = 0; i < missingFields->count(); ++i)
      suggestion += (i == 0 ? "" : ", ") + missingFields->objectAtIndex(i).description();
    information.emplace_back(NSLocalizedRecoverySuggestionErrorKey, suggestion);
  }
  return NSError::errorWithDomain(NSCocoaErrorDomain, NSCoderValueNotFoundError,
                                  std::make_shared<NSDictionary>(information));
}

}  // namespace ORLFoundation
