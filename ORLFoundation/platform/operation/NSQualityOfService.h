/// How urgent work is: what could begin begins in this order, the most urgent first.
///
///     operation->setQualityOfService(NSQualityOfServiceUtility);
#pragma once

#include <cstdint>

namespace ORLFoundation {

enum NSQualityOfService : std::int64_t {
  /// The user waits for it this moment.
  NSQualityOfServiceUserInteractive = 33,
  /// The user asked for it and cannot go on without it.
  NSQualityOfServiceUserInitiated = 25,
  NSQualityOfServiceUtility = 17,
  NSQualityOfServiceBackground = 9,
  /// Between "user initiated" and "utility", as is every value that is none of these.
  NSQualityOfServiceDefault = -1,
};

}  // namespace ORLFoundation
