#include <ORLFoundation/bridges/qt/NSMainQueueQtBridge.h>

#include <ORLFoundation/bridges/NSMainQueueBridge_testing.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

/// With the dispatcher that stands on GLib, or with Qt's own.
template <bool isOnGLib>
class QtHost {
 public:
  using Bridge = NSMainQueueQtBridge;
  class Modal {
   public:
    explicit Modal(const QtHost& /*host*/) {}
    void run() { loop_.exec(); }
    void quit() { loop_.quit(); }

   private:
    QEventLoop loop_;
  };

  QtHost() : application_(chosen(count_), arguments_) {
    const char* const name = QAbstractEventDispatcher::instance()->metaObject()->className();
    EXPECT_EQ(std::string(name).find("Glib") != std::string::npos, isOnGLib) << name;
  }

  static void run() { QCoreApplication::exec(); }
  static void quit() { QCoreApplication::quit(); }
  void after(int milliseconds, std::function<void()> call) {
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &application_, std::move(call));
  }
  /// The loop's beginning, the timer's setting and its end are four wakes of its own.
  static int wakesWhileIdle(int milliseconds) {
    QEventLoop loop;
    while (loop.processEvents()) {
    }
    int wakes = 0;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &loop,
                     [&] { ++wakes; });
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    return std::max(wakes - 4, 0);
  }
  static bool servesOnAThreadOfItsOwn() {
    bool ranThere = false;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
      QEventLoop loop;
      const NSMainQueueQtBridge bridge;
      const QThread* const own = QThread::currentThread();
      dispatch_async(dispatch_get_main_queue(), [&] {
        ranThere = QThread::currentThread() == own && NSThread::isMainThread();
        loop.quit();
      });
      loop.exec();
    }));
    thread->start();
    thread->wait();
    return ranThere;
  }

 private:
  /// Before the application is made, which chooses.
  static int& chosen(int& count) {
    isOnGLib ? static_cast<void>(qunsetenv("QT_NO_GLIB"))
             : static_cast<void>(qputenv("QT_NO_GLIB", "1"));
    return count;
  }

  int count_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  QCoreApplication application_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(QtOnGLib, NSMainQueueBridge, QtHost<true>);
INSTANTIATE_TYPED_TEST_SUITE_P(QtAlone, NSMainQueueBridge, QtHost<false>);

}  // namespace
}  // namespace ORLFoundation
