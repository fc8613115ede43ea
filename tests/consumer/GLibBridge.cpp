#include <ORLFoundation/bridges/glib/NSMainQueueGLibBridge.h>

#include <memory>

std::unique_ptr<ORLFoundation::NSMainQueueGLibBridge> makeBridge() {
  return std::make_unique<ORLFoundation::NSMainQueueGLibBridge>();
}
