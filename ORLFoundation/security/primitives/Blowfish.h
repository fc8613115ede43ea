/* The block cipher Blowfish in 16 rounds, for C and C++ callers alike. For data that was written
   with it: its blocks of 64 bits are too short for new data. */
#ifndef ORLFOUNDATION_SECURITY_PRIMITIVES_BLOWFISH_H
#define ORLFOUNDATION_SECURITY_PRIMITIVES_BLOWFISH_H

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C has no other */

#ifdef __cplusplus
extern "C" {
#endif

/** The subkeys and substitution boxes of one key. Whoever keeps one wipes it. */
typedef struct BLOWFISH_CTX { /* NOLINT(modernize-use-using): C has no other */
  uint32_t P[18];
  uint32_t S[4][256];
} BLOWFISH_CTX;

/** `Blowfish_Init`  Makes the schedule of keyLen bytes, the first byte of each four the most
 * significant. Shorter keys are taken round and round, bytes behind the 72nd not at all. A keyLen
 * of 0 or less stands for a key of zero bits. */
void Blowfish_Init(BLOWFISH_CTX* ctx, const uint8_t* key, int32_t keyLen);
/** `Blowfish_Encrypt`  One block in place: its left and its right word. */
void Blowfish_Encrypt(const BLOWFISH_CTX* ctx, uint32_t* xl, uint32_t* xr);
/** `Blowfish_Decrypt`  The inverse. */
void Blowfish_Decrypt(const BLOWFISH_CTX* ctx, uint32_t* xl, uint32_t* xr);
/** `Blowfish_Test`  Encrypts and decrypts one block with a known answer under "TESTKEY", in the
 * schedule given. 0, or -1 when the answer is another. */
int32_t Blowfish_Test(BLOWFISH_CTX* ctx);

#ifdef __cplusplus
}
#endif

#endif
