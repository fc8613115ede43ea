/* The header is C: this file compiles as C and is called by the tests of the calculator. */
#include <ORLFoundation/amortization/net_present_value.h>

double orlf_test_value_from_c(void);

double orlf_test_value_from_c(void) {
  const double times[] = {0, 1};
  const double values[] = {-100, 110};
  return net_present_value(times, values, 2, 0.1);
}
