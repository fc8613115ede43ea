/// A QIF writer as tests use it: over memory, in a stated locale and in UTC.
#pragma once

#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/stream/NSOutputStream.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <memory>
#include <string>
#include <string_view>

namespace orlftest {

/// Lets the writer make its formatters in the locale, and opens its stream.
inline void pinWriter(ORLFoundation::ORLFQIFDataWriter& writer, std::string_view locale) {
  using namespace ORLFoundation;
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>(locale));
  writer.dateFormatter()->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  static_cast<void>(writer.amountFormatter());
  writer.beginWriting();
}

/// All bytes of a stream to memory.
inline std::string bytesWritten(const ORLFoundation::NSOutputStream& stream) {
  using namespace ORLFoundation;
  const auto data = stream.propertyForKey(NSStreamDataWrittenToMemoryStreamKey).as<NSData>();
  return std::string(data.value().text());
}

/// A writer in en_US over memory.
struct WrittenQIF {
  explicit WrittenQIF(std::string_view locale = "en_US") { pinWriter(writer, locale); }
  [[nodiscard]] std::string text() { return bytesWritten(*writer.stream()); }
  /// What was written since the last look.
  [[nodiscard]] std::string added() {
    const std::string all = text();
    std::string last = all.substr(seen_);
    seen_ = all.size();
    return last;
  }

  ORLFoundation::ORLFQIFDataWriter writer;

 private:
  std::size_t seen_ = 0;
};

}  // namespace orlftest
