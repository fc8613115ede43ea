/// A writer of records as tests use it: over memory, in a stated locale and in UTC.
#pragma once

#include <ORLFoundation/interchange/qif/ORLFRecordWriter.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/stream/NSOutputStream_testing.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace orlftest {

/// Lets the writer make its formatters in the locale, and opens its stream.
inline void pinWriter(ORLFoundation::ORLFRecordWriter& writer, std::string_view locale) {
  using namespace ORLFoundation;
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>(locale));
  writer.dateFormatter()->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  static_cast<void>(writer.amountFormatter());
  writer.beginWriting();
}

template <class Writer>
struct WrittenRecords {
  explicit WrittenRecords(std::string_view locale = "en_US") { pinWriter(writer, locale); }
  [[nodiscard]] std::string text() { return bytesWritten(*writer.stream()); }
  /// What was written since the last look.
  [[nodiscard]] std::string added() {
    const std::string all = text();
    std::string last = all.substr(seen_);
    seen_ = all.size();
    return last;
  }

  Writer writer;

 private:
  std::size_t seen_ = 0;
};

}  // namespace orlftest
