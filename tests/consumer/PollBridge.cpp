#include <ORLFoundation/platform/dispatch/NSMainQueuePollBridge.h>

#include <memory>

std::unique_ptr<ORLFoundation::NSMainQueuePollBridge> makeBridge() {
  return std::make_unique<ORLFoundation::NSMainQueuePollBridge>();
}
