/// What the streams of archives throw: an error record, whose code says what kind of failure it is.
///
///     try {
///       readEntries(archive);
///     } catch (const ArchiveError& failure) {
///       show(failure.error()->localizedDescription());
///     }
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <stdexcept>
#include <string_view>

namespace ORLFoundation {

/// Of errors whose codes are those below.
inline constexpr std::string_view ArchiveErrorDomain = "ArchiveErrorDomain";

/// Codes of `ArchiveErrorDomain`. Failures of the file system keep their own domain and code.
enum ArchiveErrorCode : NSInteger {
  ArchiveErrorDamaged = 1,       ///< Cut off, altered, or no archive at all.
  ArchiveErrorUnsupported = 2,   ///< A form of the container that is not read here.
  ArchiveErrorWrongKey = 3,      ///< The wrong key or password, or an altered record of it.
  ArchiveErrorTooLarge = 4,      ///< More entries, bytes or memory than allowed.
  ArchiveErrorUnsafeName = 5,    ///< A name that would lead out of the folder, or comes twice.
  ArchiveErrorNotProtected = 6,  ///< A password was given for what is not protected.
  ArchiveErrorChanged = 7,       ///< A file became shorter while it was packed.
};

class ArchiveError : public std::runtime_error {
 public:
  /// The text for people is the message of the exception too. The record is never null.
  explicit ArchiveError(std::shared_ptr<const NSError> error);
  ArchiveError(ArchiveErrorCode code, std::string_view localizedDescription);

  [[nodiscard]] const std::shared_ptr<const NSError>& error() const noexcept { return error_; }
  /// Whether the record is of `ArchiveErrorDomain` and has the code.
  [[nodiscard]] bool is(ArchiveErrorCode code) const noexcept;

 private:
  std::shared_ptr<const NSError> error_;
};

}  // namespace ORLFoundation
