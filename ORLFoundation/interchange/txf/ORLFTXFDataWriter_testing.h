/// A TXF writer as tests use it: over memory, in en_US and in UTC.
#pragma once

#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter.h>
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

namespace orlftest {

struct WrittenTXF {
  WrittenTXF() {
    using namespace ORLFoundation;
    const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
    writer.dateFormatter()->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    static_cast<void>(writer.amountFormatter());
    static_cast<void>(writer.securitySharesFormatter());
    writer.beginWriting();
  }
  [[nodiscard]] std::string text() {
    using namespace ORLFoundation;
    const id data = writer.stream()->propertyForKey(NSStreamDataWrittenToMemoryStreamKey);
    return std::string(data.as<NSData>().value().text());
  }
  /// What was written since the last look.
  [[nodiscard]] std::string added() {
    const std::string all = text();
    std::string last = all.substr(seen_);
    seen_ = all.size();
    return last;
  }

  ORLFoundation::ORLFTXFDataWriter writer;

 private:
  std::size_t seen_ = 0;
};

}  // namespace orlftest
