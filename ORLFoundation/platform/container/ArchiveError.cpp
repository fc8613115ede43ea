#include <ORLFoundation/platform/container/ArchiveError.h>

#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

std::shared_ptr<const NSError> record(ArchiveErrorCode code, std::string_view text) {
  std::shared_ptr<const NSError> error;
  NSFillErrorSlot(&error, ArchiveErrorDomain, code, text);
  return error;
}

}  // namespace

ArchiveError::ArchiveError(std::shared_ptr<const NSError> error)
    : std::runtime_error(error->localizedDescription()), error_(std::move(error)) {}

ArchiveError::ArchiveError(ArchiveErrorCode code, std::string_view localizedDescription)
    : ArchiveError(record(code, localizedDescription)) {}

bool ArchiveError::is(ArchiveErrorCode code) const noexcept {
  return error_->domain() == ArchiveErrorDomain && error_->code() == code;
}

}  // namespace ORLFoundation
