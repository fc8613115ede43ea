/* The headers are C: this file compiles as C and is called by the tests of each. */
#include <ORLFoundation/security/primitives/Blowfish.h>
#include <ORLFoundation/security/primitives/NewBase64.h>
#include <ORLFoundation/security/primitives/ORLFMD5.h>
#include <stdlib.h>
#include <string.h>

int32_t orlf_test_blowfish_from_c(void);
int orlf_test_base64_from_c(void);
int orlf_test_md5_from_c(void);

int32_t orlf_test_blowfish_from_c(void) {
  BLOWFISH_CTX context;
  return Blowfish_Test(&context);
}

/* 1 when the text came back. */
int orlf_test_base64_from_c(void) {
  size_t encoded = 0;
  size_t decoded = 0;
  char* text = NewBase64Encode("ABCDE", 5, 1, &encoded);
  char* bytes = NewBase64Decode(text, encoded, &decoded);
  const int same = decoded == 5 && memcmp(bytes, "ABCDE", 5) == 0;
  free(text);
  free(bytes);
  return same;
}

/* The first byte of the digest of "abc". */
int orlf_test_md5_from_c(void) {
  uint8_t digest[16];
  ORLFMD5((const uint8_t*)"abc", 3, digest);
  return digest[0];
}
