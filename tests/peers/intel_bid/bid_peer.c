// Intel's decimals of 34 digits over arrays, for the benchmark of decimals. A library of its own,
// that shows nothing but these functions: the compiler's decimals call functions of the same names
// that take other arguments.
#define DECIMAL_CALL_BY_REFERENCE 0
#define DECIMAL_GLOBAL_ROUNDING 0
#define DECIMAL_GLOBAL_EXCEPTION_FLAGS 0
#include <bid_conf.h>
#include <bid_functions.h>

#include <stddef.h>
#include <string.h>

typedef BID_UINT128 Number;

struct Text {
  const char* start;
  size_t size;
};

#define CALCULATION(name, result)                                                     \
  void name(const Number* left, const Number* right, Number* results, size_t count) { \
    _IDEC_flags flags = 0;                                                            \
    for (size_t i = 0; i < count; ++i) results[i] = result;                           \
  }

CALCULATION(bid_peer_add, bid128_add(left[i], right[i], BID_ROUNDING_TO_NEAREST, &flags))
CALCULATION(bid_peer_multiply, bid128_mul(left[i], right[i], BID_ROUNDING_TO_NEAREST, &flags))
CALCULATION(bid_peer_divide, bid128_div(left[i], right[i], BID_ROUNDING_TO_NEAREST, &flags))
// The right side is a cent.
CALCULATION(bid_peer_round, bid128_quantize(left[i], right[i], BID_ROUNDING_TIES_AWAY, &flags))

// Texts that end with a zero byte.
void bid_peer_parse(const struct Text* texts, Number* results, size_t count) {
  _IDEC_flags flags = 0;
  for (size_t i = 0; i < count; ++i)
    results[i] = bid128_from_string((char*)texts[i].start, BID_ROUNDING_TO_NEAREST, &flags);
}

// Writes a text of at most 64 characters; gives its length.
size_t bid_peer_print(const Number* number, char* text) {
  _IDEC_flags flags = 0;
  bid128_to_string(text, *number, &flags);
  return strlen(text);
}
