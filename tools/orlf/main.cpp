#ifdef ORLF_HAS_SECRET_SERVICE
#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>
#endif

#include <fcntl.h>
#include <openssl/crypto.h>
#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "io/ending_signals.h"
#include "tool.h"

namespace {

/// Standard streams that are closed: a file of ours that took the place of one would be given what
/// is said there. What stands there now can be read or written the wrong way only, so that it fails
/// as before.
void holdStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(descriptor, F_GETFD) < 0)
      static_cast<void>(::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

}  // namespace

int main(int count, char** arguments) {
  holdStandardStreams();
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
