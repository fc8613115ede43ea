/// The search for the rate at which a function of it is zero: a bracket is widened from 0 to 20 %
/// until the function changes its sign over it, then halved.
#pragma once

#include <ORLFoundation/amortization/net_present_value.h>

#include <optional>
#include <vector>

namespace ORLFoundation::internal::amortization {

/// Cash flows as two lists of equal length, times in years.
struct ORLFCashFlows {
  std::vector<double> times;
  std::vector<double> values;

  /// Their worth at a rate per year.
  [[nodiscard]] double worthAt(double rate) const {
    return net_present_value(times.data(), values.data(), static_cast<int64_t>(times.size()), rate);
  }
};

/// A rate whose worth is zero to within 0.00001, or that lies within 0.00001 of such a rate;
/// nothing when 50 widenings find no bracket, or 50 halvings no such rate.
[[nodiscard]] std::optional<double> ORLFRateOfReturn(const ORLFCashFlows& flows);

}  // namespace ORLFoundation::internal::amortization
