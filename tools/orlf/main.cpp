#ifdef ORLF_HAS_SECRET_SERVICE
#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>
#endif

#include <openssl/crypto.h>

#include <iostream>
#include <string>
#include <vector>

#include "io/ending_signals.h"
#include "tool.h"

int main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);
  const orlftool::EndingSignals signals;
  // Worker threads may still run when main has returned: what they use stays.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
#ifdef ORLF_HAS_SECRET_SERVICE
  ORLFoundation::SecretServiceItemStore::registerStore();
#endif
  return orlftool::runTool(std::vector<std::string>(arguments + (count > 0), arguments + count),
                           std::cout, std::cerr);
}
