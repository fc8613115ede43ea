#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <ORLFoundation/platform/stream/internal/FileOutputStream.h>
#include <ORLFoundation/platform/stream/internal/MemoryOutputStream.h>

namespace ORLFoundation {

using namespace internal::stream;

std::shared_ptr<NSOutputStream> NSOutputStream::initToMemory() {
  return std::make_shared<MemoryOutputStream>();
}

std::shared_ptr<NSOutputStream> NSOutputStream::initToFileAtPath(std::string_view path,
                                                                 bool append) {
  return std::make_shared<FileOutputStream>(path, append);
}

bool NSOutputStream::hasSpaceAvailable() const { return streamStatus() == NSStreamStatusOpen; }

}  // namespace ORLFoundation
