#include <ORLFoundation/bridges/qt/NSMainQueueQtBridge.h>

#include <memory>

std::unique_ptr<ORLFoundation::NSMainQueueQtBridge> makeBridge() {
  return std::make_unique<ORLFoundation::NSMainQueueQtBridge>();
}
