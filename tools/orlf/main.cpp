#ifdef ORLF_HAS_SECRET_SERVICE
#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>
#endif

#include <iostream>
#include <string>
#include <vector>

#include "io/ending_signals.h"
#include "tool.h"

int main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);
  const orlftool::EndingSignals signals;
#ifdef ORLF_HAS_SECRET_SERVICE
  ORLFoundation::SecretServiceItemStore::registerStore();
#endif
  return orlftool::runTool(std::vector<std::string>(arguments + (count > 0), arguments + count),
                           std::cout, std::cerr);
}
