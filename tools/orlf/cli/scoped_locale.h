/// The locale in which the library writes numbers, for as long as an object lives.
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSLocale.h>

#include <memory>
#include <string>

namespace orlftool {

class ScopedLocale {
 public:
  explicit ScopedLocale(const std::string& identifier)
      : locale_(ORLFoundation::NSLocale::setCurrentLocale,
                std::make_shared<ORLFoundation::NSLocale>(identifier)) {}

 private:
  ORLFoundation::Replaced<std::shared_ptr<ORLFoundation::NSLocale>> locale_;
};

}  // namespace orlftool
