/// OpenSSL's state beyond the end of main.
#pragma once

#include <openssl/crypto.h>

namespace ORLFoundation::internal::crypto {

/// To be called before OpenSSL is. Worker threads may still use it when main has returned, so that
/// its clean-up at the process's end is left out, unless the program asked for OpenSSL before.
inline void keepOpenSSLState() noexcept {
  [[maybe_unused]] static const bool isKept =
      OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr) == 1;
}

}  // namespace ORLFoundation::internal::crypto
