/// What tests of rates share: flows as two lists of numbers.
#pragma once

#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>
#include <ORLFoundation/platform/object/NSArray.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace orlftest {

using Doubles = std::vector<double>;

/// 0, 1, 2 ...
inline std::shared_ptr<ORLFoundation::NSArray> indexes(std::size_t count) {
  using namespace ORLFoundation;
  std::vector<id> members;
  for (std::size_t i = 0; i < count; ++i) members.emplace_back(static_cast<NSInteger>(i));
  return std::make_shared<NSArray>(members);
}

/// The rate of the flows in `values` at the times of the same places.
inline std::optional<ORLFoundation::NSDecimalNumber> rateOf(const Doubles& times,
                                                            const Doubles& values,
                                                            ORLFoundation::NSUInteger options = 0) {
  using namespace ORLFoundation;
  return ORLFAmortizationCalculator::internalRateOfReturnForDataset(
      *indexes(times.size()), options, [&](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
        return ORLFCashFlowPoint{times[index], values[index]};
      });
}

}  // namespace orlftest
