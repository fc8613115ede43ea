/// What tests of progress share.
#pragma once

#include <ORLFoundation/platform/operation/NSProgress.h>

#include <cstdint>
#include <memory>

namespace orlftest {

inline std::shared_ptr<ORLFoundation::NSProgress> progressOf(std::int64_t total,
                                                             std::int64_t completed = 0) {
  auto progress = ORLFoundation::NSProgress::discreteProgressWithTotalUnitCount(total);
  progress->setCompletedUnitCount(completed);
  return progress;
}

}  // namespace orlftest
