/// How tests write decimals.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>

#include <string_view>

namespace orlftest {

inline ORLFoundation::NSDecimal decimal(std::string_view text) {
  return ORLFoundation::NSDecimal::parse(text);
}

}  // namespace orlftest
