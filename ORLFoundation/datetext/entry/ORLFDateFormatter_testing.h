/// What tests of typed dates share: a process whose locale, zone and clock are pinned.
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <functional>
#include <memory>
#include <string>

namespace orlftest {

/// While it lives.
class PinnedWorld {
 public:
  PinnedWorld(const std::string& locale, const std::string& zone, ORLFoundation::NSDate now)
      : locale_(ORLFoundation::NSLocale::setCurrentLocale,
                std::make_shared<ORLFoundation::NSLocale>(locale)),
        clock_(ORLFoundation::NSDate::setClock, [now] { return now; }),
        zone_(zone) {}

 private:
  ORLFoundation::Replaced<std::shared_ptr<ORLFoundation::NSLocale>> locale_;
  ORLFoundation::Replaced<std::function<ORLFoundation::NSDate()>> clock_;
  DefaultZone zone_;
};

}  // namespace orlftest
