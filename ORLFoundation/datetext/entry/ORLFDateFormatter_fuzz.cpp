// Reads any text as a typed date, by the format, the short style and the scan, whole and in ranges,
// and prints what came of it.

#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

using namespace ORLFoundation;

std::shared_ptr<ORLFDateFormatter> formatterOf(const char* locale) {
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>(locale));
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("America/Sao_Paulo"));
  auto formatter = std::make_shared<ORLFDateFormatter>();
  formatter->setMinimunDate(NSDate::dateWithTimeIntervalSince1970(0));
  return formatter;
}

// A date that was read is none before the minimum, and is printed.
void readAndPrint(const ORLFDateFormatter& formatter, std::string_view text, NSRange* range) {
  std::optional<NSDate> date;
  std::shared_ptr<const NSError> error;
  const bool read = formatter.getObjectValue(&date, text, range, &error);
  if (read == (error != nullptr)) std::abort();
  if (!read || !date) return;
  if (date->timeIntervalSince1970() < 0 || formatter.stringFromDate(*date).empty()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool quiet = [] {
    NSSetLogSink([](std::string_view) {});
    NSDate::setClock([] { return NSDate::dateWithTimeIntervalSince1970(1700000000); });
    return true;
  }();
  static const std::array formatters{formatterOf("en_US"), formatterOf("de_DE"),
                                     formatterOf("ja_JP@calendar=japanese"), formatterOf("th_TH")};
  static_cast<void>(quiet);
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const auto& formatter : formatters) {
    readAndPrint(*formatter, text, nullptr);
    NSRange range{size / 4, size / 2};
    readAndPrint(*formatter, text, &range);
  }
  return 0;
}
