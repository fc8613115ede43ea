

#include <ORLFoundation/amortization/net_present_value.h>

#include <cmath>

extern "C" double net_present_value(const double* times, const double* values, int64_t count,
                                    double rate) {
  double sum = 0.0;
  for (int64_t i = 0; i < count; ++i) sum += values[i] / std::pow(rate + 1.0, times[i]);
  return sum;
}
