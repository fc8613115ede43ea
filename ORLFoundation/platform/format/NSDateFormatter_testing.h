/// Date formatters for tests.
#pragma once

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <memory>

namespace orlftest {

/// One without styles, of a locale and in a zone.
inline std::shared_ptr<ORLFoundation::NSDateFormatter> formatterOf(const char* locale,
                                                                   const char* zone = "UTC") {
  auto formatter = std::make_shared<ORLFoundation::NSDateFormatter>();
  formatter->setLocale(std::make_shared<ORLFoundation::NSLocale>(locale));
  formatter->setTimeZone(ORLFoundation::NSTimeZone::timeZoneWithName(zone));
  return formatter;
}

}  // namespace orlftest
