/* The present worth of dated cash flows, for C and C++ callers alike. */
#ifndef ORLFOUNDATION_AMORTIZATION_NET_PRESENT_VALUE_H
#define ORLFOUNDATION_AMORTIZATION_NET_PRESENT_VALUE_H

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C has no other */

#ifdef __cplusplus
extern "C" {
#endif

/* `net_present_value`  The sum over i of values[i] / (rate + 1) to the power times[i], from the
   first to the last; times in years from the present, a rate of 0.05 for five percent a year.
   0.0 when count is 0. Both arrays hold count doubles. */
double net_present_value(const double* times, const double* values, int64_t count, double rate);

#ifdef __cplusplus
}
#endif

#endif
