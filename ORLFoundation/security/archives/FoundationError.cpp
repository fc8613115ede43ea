#include <ORLFoundation/security/archives/FoundationError.h>

#include <array>

namespace ORLFoundation {
namespace {

struct ErrorText {
  FoundationError error;
  const char* text;
};
constexpr std::array kTexts{
    ErrorText{FoundationError::unknown, "An unknown error occurred."},
    ErrorText{FoundationError::nilUnwrappedOptional, "A stream could not be opened."},
    ErrorText{FoundationError::archiveRequiresPassword, "The archive requires a password."},
};

}  // namespace

std::string localizedDescription(FoundationError error) {
  for (const ErrorText& text : kTexts)
    if (text.error == error) return text.text;
  return kTexts.front().text;
}

std::shared_ptr<const NSError> NSErrorOfFoundationError(
    FoundationError error, const std::shared_ptr<const NSError>& underlying) {
  std::string text = localizedDescription(error);
  if (!underlying)
    return NSError::errorWithDomain(
        FoundationErrorDomain, static_cast<NSInteger>(error),
        NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, text}}));
  text += " " + underlying->localizedDescription();
  return NSError::errorWithDomain(
      FoundationErrorDomain, static_cast<NSInteger>(error),
      NSDictionary::dictionaryWithEntries(
          {{NSLocalizedDescriptionKey, text},
           {NSUnderlyingErrorKey, std::const_pointer_cast<NSError>(underlying)}}));
}

bool isFoundationError(const NSError& record, FoundationError error) noexcept {
  return record.domain() == FoundationErrorDomain && record.code() == static_cast<NSInteger>(error);
}

}  // namespace ORLFoundation
