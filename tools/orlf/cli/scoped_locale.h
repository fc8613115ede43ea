/// The locale in which the library writes numbers, for as long as an object lives.
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>

#include <memory>
#include <string>

namespace orlftool {

class ScopedLocale {
 public:
  explicit ScopedLocale(const std::string& identifier) {
    using ORLFoundation::NSLocale;
    NSLocale::setCurrentLocale(std::make_shared<NSLocale>(identifier));
  }
  /// Restores the environment's locale.
  ~ScopedLocale() { ORLFoundation::NSLocale::setCurrentLocale(nullptr); }
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;
};

}  // namespace orlftool
