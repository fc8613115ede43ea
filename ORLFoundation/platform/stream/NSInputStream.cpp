#include <ORLFoundation/platform/stream/NSInputStream.h>

#include <ORLFoundation/platform/stream/internal/FileInputStream.h>
#include <ORLFoundation/platform/stream/internal/MemoryInputStream.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::stream;

std::shared_ptr<NSInputStream> NSInputStream::initWithData(NSData data) {
  return std::make_shared<MemoryInputStream>(std::move(data));
}

std::shared_ptr<NSInputStream> NSInputStream::initWithFileAtPath(std::string_view path) {
  return std::make_shared<FileInputStream>(path);
}

std::shared_ptr<NSInputStream> NSInputStream::initWithURL(const NSURL& url) {
  return url.isFileURL() ? initWithFileAtPath(url.path()) : nullptr;
}

bool NSInputStream::hasBytesAvailable() const { return streamStatus() == NSStreamStatusOpen; }

}  // namespace ORLFoundation
