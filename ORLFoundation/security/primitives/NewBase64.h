/* Base64 text with line breaks, and a reader that passes over what is none, for C and C++ callers
   alike. */
#ifndef ORLFOUNDATION_SECURITY_PRIMITIVES_NEWBASE64_H
#define ORLFOUNDATION_SECURITY_PRIMITIVES_NEWBASE64_H

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): C has no other */

#ifdef __cplusplus
extern "C" {
#endif

/** `NewBase64Encode`  The text of length bytes, "=" at its end, a zero byte behind it that the
 * length does not count. With separateLines (not 0) a carriage return and a line feed stand after
 * every 64 characters, between lines only. The caller frees it; NULL where memory is short. The
 * length goes to outputLength unless that is NULL. */
char* NewBase64Encode(const void* inputBuffer, size_t length, int separateLines,
                      size_t* outputLength);

/** `NewBase64Decode`  The bytes of length characters; (size_t)-1 or -2 for a text that ends at its
 * first zero byte. Characters outside the alphabet, "=" included, are passed over; the others count
 * in groups of four. A last group of fewer characters gives one byte less than it has characters,
 * and one of none, which what is passed over behind a full group makes, takes the last byte back:
 * "QUJD" gives three bytes, "QUJD\n" two. A text without any character of the alphabet gives none.
 * The caller frees the result; NULL where memory is short. The length goes to outputLength unless
 * that is NULL. */
void* NewBase64Decode(const char* inputBuffer, size_t length, size_t* outputLength);

#ifdef __cplusplus
}
#endif

#endif
