/// How long tests look whether something stays quiet.
#pragma once

#include <cstdlib>

namespace orlftest {

/// 300; ORLF_IDLE_SECONDS says otherwise.
inline int idleMilliseconds() {
  const char* const text = std::getenv("ORLF_IDLE_SECONDS");
  return text != nullptr ? static_cast<int>(1000 * std::atof(text)) : 300;
}

}  // namespace orlftest
