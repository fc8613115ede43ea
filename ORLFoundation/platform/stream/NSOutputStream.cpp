#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/internal/FileOutputStream.h>
#include <ORLFoundation/platform/stream/internal/MemoryOutputStream.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::stream;

std::shared_ptr<NSOutputStream> NSOutputStream::initToMemory() {
  return std::make_shared<MemoryOutputStream>();
}

std::shared_ptr<NSOutputStream> NSOutputStream::initToFileAtPath(std::string_view path,
                                                                 bool append) {
  return std::make_shared<FileOutputStream>(path, append);
}

void NSOutputStream::open() {
  if (streamStatus() != NSStreamStatusNotOpen) return;
  setStreamError(nullptr);
  setStreamStatus(NSStreamStatusOpen);
}

void NSOutputStream::close() {
  if (streamStatus() == NSStreamStatusOpen) setStreamStatus(NSStreamStatusClosed);
}

bool NSOutputStream::hasSpaceAvailable() const { return streamStatus() == NSStreamStatusOpen; }

id NSOutputStream::propertyForKey(std::string_view /*key*/) const { return nullptr; }

void NSOutputStream::setStreamError(std::shared_ptr<const NSError> error) noexcept {
  error_ = std::move(error);
}

}  // namespace ORLFoundation
