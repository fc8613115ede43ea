/// What tests ask of streams.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSStream.h>

namespace orlftest {

/// The error number of a stream; -1 for no error and for one of another domain.
inline ORLFoundation::NSInteger posixCodeOf(const ORLFoundation::NSStream& stream) {
  const auto error = stream.streamError();
  return error && error->domain() == ORLFoundation::NSPOSIXErrorDomain ? error->code() : -1;
}

}  // namespace orlftest
