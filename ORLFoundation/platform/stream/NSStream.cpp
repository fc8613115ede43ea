#include <ORLFoundation/platform/stream/NSStream.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <utility>

namespace ORLFoundation {

void NSStream::open() {
  if (streamStatus() != NSStreamStatusNotOpen) return;
  setStreamError(nullptr);
  setStreamStatus(NSStreamStatusOpen);
}

void NSStream::close() {
  const NSStreamStatus status = streamStatus();
  if (status == NSStreamStatusOpen || status == NSStreamStatusAtEnd)
    setStreamStatus(NSStreamStatusClosed);
}

id NSStream::propertyForKey(std::string_view /*key*/) const { return nullptr; }

void NSStream::setStreamError(std::shared_ptr<const NSError> error) noexcept {
  error_ = std::move(error);
}

}  // namespace ORLFoundation
