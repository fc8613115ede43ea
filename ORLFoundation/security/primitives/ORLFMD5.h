/* The digest MD5 (RFC 1321), for C and C++ callers alike. For identifiers and checks of damage:
   texts of equal digest can be made. */
#ifndef ORLFOUNDATION_SECURITY_PRIMITIVES_ORLFMD5_H
#define ORLFOUNDATION_SECURITY_PRIMITIVES_ORLFMD5_H

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C has no other */

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ORLFMD5Context { /* NOLINT(modernize-use-using): C has no other */
  uint32_t state[4];
  uint32_t bits[2]; /* the length so far in bits: the low word, then the high one */
  uint8_t block[64];
} ORLFMD5Context;

/** `ORLFMD5Init`  Begins a digest. */
void ORLFMD5Init(ORLFMD5Context* context);
/** `ORLFMD5Update`  Takes the next length bytes. */
void ORLFMD5Update(ORLFMD5Context* context, const uint8_t* bytes, uint32_t length);
/** `ORLFMD5Transform`  Mixes one block into the state: 16 words, the low byte of each first in the
 * text. */
void ORLFMD5Transform(uint32_t state[4], const uint32_t block[16]);
/** `ORLFMD5Final`  Writes the digest and wipes the whole context. */
void ORLFMD5Final(uint8_t digest[16], ORLFMD5Context* context);
/** `ORLFMD5`  The digest of length bytes. */
void ORLFMD5(const uint8_t* bytes, uint32_t length, uint8_t digest[16]);

#ifdef __cplusplus
}
#endif

#endif
