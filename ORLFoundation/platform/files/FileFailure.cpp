#include <ORLFoundation/platform/files/FileFailure.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace ORLFoundation::internal::files {
namespace {

struct Codes {
  int number;
  NSInteger whileReading, whileWriting;
};

constexpr std::array kCodes{
    Codes{ENOENT, NSFileReadNoSuchFileError, NSFileNoSuchFileError},
    Codes{ENOTDIR, NSFileReadNoSuchFileError, NSFileNoSuchFileError},
    Codes{EACCES, NSFileReadNoPermissionError, NSFileWriteNoPermissionError},
    Codes{EPERM, NSFileReadNoPermissionError, NSFileWriteNoPermissionError},
    Codes{ENAMETOOLONG, NSFileReadInvalidFileNameError, NSFileWriteInvalidFileNameError},
    Codes{EFBIG, NSFileReadTooLargeError, NSFileWriteUnknownError},
    Codes{EEXIST, NSFileReadUnknownError, NSFileWriteFileExistsError},
    Codes{ENOSPC, NSFileReadUnknownError, NSFileWriteOutOfSpaceError},
    Codes{EDQUOT, NSFileReadUnknownError, NSFileWriteOutOfSpaceError},
    Codes{EROFS, NSFileReadUnknownError, NSFileWriteVolumeReadOnlyError},
};

}  // namespace

NSInteger codeOfFailure(FileWork work, int number) noexcept {
  const bool isReading = work == FileWork::Read;
  for (const Codes& codes : kCodes)
    if (codes.number == number) return isReading ? codes.whileReading : codes.whileWriting;
  return isReading ? NSInteger{NSFileReadUnknownError} : NSInteger{NSFileWriteUnknownError};
}

std::shared_ptr<const NSError> errorOf(const FileFailure& failure) {
  const std::string text = failure.reason.empty() ? std::strerror(failure.number) : failure.reason;
  const auto cause =
      NSError::errorWithDomain(NSPOSIXErrorDomain, failure.number,
                               NSDictionary::dictionaryWithEntries(
                                   {{NSLocalizedDescriptionKey, std::strerror(failure.number)}}));
  return NSError::errorWithDomain(
      NSCocoaErrorDomain, codeOfFailure(failure.work, failure.number),
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, failure.path + ": " + text},
                                           {NSFilePathErrorKey, failure.path},
                                           {NSURLErrorKey, NSURL::fileURLWithPath(failure.path)},
                                           {NSUnderlyingErrorKey, cause}}));
}

bool fillErrorSlot(NSErrorSlot slot, const FileFailure& failure) {
  return slot != nullptr && NSFillErrorSlot(slot, errorOf(failure));
}

std::optional<std::string> pathOfFileURL(const NSURL& url, FileWork work, NSErrorSlot error) {
  const bool isReading = work == FileWork::Read;
  if (!url.isFileURL()) {
    NSFillErrorSlot(error, NSCocoaErrorDomain,
                    isReading ? NSInteger{NSFileReadUnsupportedSchemeError}
                              : NSInteger{NSFileWriteUnsupportedSchemeError},
                    url.absoluteString() + ": not the address of a file");
    return std::nullopt;
  }
  std::string path = url.path();
  if (path.find('\0') == path.npos && !path.empty()) return path;
  NSFillErrorSlot(error, NSCocoaErrorDomain,
                  isReading ? NSInteger{NSFileReadInvalidFileNameError}
                            : NSInteger{NSFileWriteInvalidFileNameError},
                  url.absoluteString() + ": not the name of a file");
  return std::nullopt;
}

}  // namespace ORLFoundation::internal::files
