/// The main queue within an event loop of Qt's, whichever dispatcher that has. The library links no
/// Qt: who includes this does, or takes the component QtBridge of its CMake package.
///
///     QApplication application(count, arguments);
///     const NSMainQueueQtBridge bridge;
///     return application.exec();
#pragma once

#include <ORLFoundation/platform/dispatch/NSMainQueuePollBridge.h>

#include <QObject>
#include <QSocketNotifier>

namespace ORLFoundation {

/// The event loops of the thread that makes it serve the main queue while it lives; that thread is
/// the main one (NSMainQueuePollBridge.h tells the rest). An event dispatcher has to be there: make
/// the application first, or a QThread. Loops within loops, as modal dialogs run them, go on
/// serving.
class NSMainQueueQtBridge {
 public:
  NSMainQueueQtBridge() : notifier_(bridge_.descriptor(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                     [this] { bridge_.dispatch(); });
  }
  NSMainQueueQtBridge(const NSMainQueueQtBridge&) = delete;
  NSMainQueueQtBridge& operator=(const NSMainQueueQtBridge&) = delete;

 private:
  NSMainQueuePollBridge bridge_;
  QSocketNotifier notifier_;
};

}  // namespace ORLFoundation
