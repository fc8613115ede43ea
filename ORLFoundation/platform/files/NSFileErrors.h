/// The codes of `NSCocoaErrorDomain` that tell of files.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

enum NSFileError : NSInteger {
  NSFileNoSuchFileError = 4,  ///< Of what was to be removed, or written to.
  NSFileReadUnknownError = 256,
  NSFileReadNoPermissionError = 257,
  NSFileReadInvalidFileNameError = 258,
  NSFileReadCorruptFileError = 259,
  NSFileReadNoSuchFileError = 260,
  NSFileReadUnsupportedSchemeError = 262,
  NSFileReadTooLargeError = 263,
  NSFileWriteUnknownError = 512,
  NSFileWriteNoPermissionError = 513,
  NSFileWriteInvalidFileNameError = 514,
  NSFileWriteFileExistsError = 516,
  NSFileWriteUnsupportedSchemeError = 518,
  NSFileWriteOutOfSpaceError = 640,
  NSFileWriteVolumeReadOnlyError = 642,
};

}  // namespace ORLFoundation
