#include <ORLFoundation/bridges/qt/NSMainQueueQtBridge.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;

/// With the dispatcher that stands on GLib, and with Qt's own.
class NSMainQueueQtBridgeTest : public testing::TestWithParam<bool> {
 protected:
  NSMainQueueQtBridgeTest() {
    while (pumpMainQueue(0)) {
    }
    if (GetParam()) {
      qunsetenv("QT_NO_GLIB");
    } else {
      qputenv("QT_NO_GLIB", "1");
    }
    application_.emplace(count_, arguments_);
    bridge_.emplace();
  }
  ~NSMainQueueQtBridgeTest() override { bridge_.reset(); }

  /// Runs the application until something quits it, for 20 seconds at most.
  void run() {
    QTimer limit;
    bool isLate = false;
    QObject::connect(&limit, &QTimer::timeout, &limit, [&] {
      isLate = true;
      QCoreApplication::quit();
    });
    limit.start(20'000);
    QCoreApplication::exec();
    EXPECT_FALSE(isLate);
  }

  int count_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::optional<QCoreApplication> application_;
  std::optional<NSMainQueueQtBridge> bridge_;
  const dispatch_queue_t& main_ = dispatch_get_main_queue();
};

INSTANTIATE_TEST_SUITE_P(Dispatchers, NSMainQueueQtBridgeTest, testing::Bool());

TEST_P(NSMainQueueQtBridgeTest, RunsOnTheDispatcherThatItNames) {
  const char* const name = QAbstractEventDispatcher::instance()->metaObject()->className();
  EXPECT_EQ(std::string(name).find("Glib") != std::string::npos, GetParam()) << name;
}

TEST_P(NSMainQueueQtBridgeTest, ServesItemsAndTimers) {
  std::vector<int> order;
  NSTimer::scheduledTimerWithTimeInterval(0.005, false, [&](NSTimer&) {
    order.push_back(2);
    QCoreApplication::quit();
  });
  dispatch_async(main_, [&] { order.push_back(1); });
  run();
  EXPECT_THAT(order, ElementsAre(1, 2));
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), [&] {
    dispatch_sync(main_, [&] {
      EXPECT_TRUE(NSThread::isMainThread());
      QCoreApplication::quit();
    });
  });
  run();
}

TEST_P(NSMainQueueQtBridgeTest, ServesOnAThreadOfQts) {
  bridge_.reset();
  bool ranThere = false;
  const std::unique_ptr<QThread> thread(QThread::create([&] {
    QEventLoop loop;
    const NSMainQueueQtBridge bridge;
    const QThread* const own = QThread::currentThread();
    dispatch_async(main_, [&] {
      ranThere = QThread::currentThread() == own && NSThread::isMainThread();
      loop.quit();
    });
    loop.exec();
  }));
  thread->start();
  thread->wait();
  EXPECT_TRUE(ranThere);
  EXPECT_TRUE(NSThread::isMainThread());
}

TEST_P(NSMainQueueQtBridgeTest, ALoopWithinAnItemServesTheRest) {
  std::vector<int> order;
  QEventLoop modal;
  dispatch_async(main_, [&] {
    order.push_back(1);
    modal.exec();
    order.push_back(4);
    QCoreApplication::quit();
  });
  dispatch_async(main_, [&] {
    order.push_back(2);
    NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&](NSTimer&) {
      order.push_back(3);
      modal.quit();
    });
  });
  run();
  EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST_P(NSMainQueueQtBridgeTest, IsQuietWhileThereIsNothingToDo) {
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(100, true, {});
  QEventLoop loop;
  while (loop.processEvents()) {
  }
  int wakes = 0;
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &loop,
                   [&] { ++wakes; });
  QTimer::singleShot(300, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
  EXPECT_LE(wakes, 4) << "the loop's beginning and the timer's end";
  timer->invalidate();
}

TEST_P(NSMainQueueQtBridgeTest, ABlockThatPostsItselfLeavesTheHostItsTurns) {
  bool isOver = false;
  std::function<void()> again = [&] {
    if (!isOver) dispatch_async(main_, again);
  };
  dispatch_async(main_, again);
  QTimer::singleShot(5, [&] {
    isOver = true;
    QCoreApplication::quit();
  });
  run();
  EXPECT_TRUE(isOver);
  while (pumpMainQueue(0)) {
  }
}

TEST_P(NSMainQueueQtBridgeTest, NoExceptionReachesTheHost) {
  LogCapture log;
  dispatch_async(main_, [] { throw std::runtime_error("no"); });
  dispatch_async(main_, [] { QCoreApplication::quit(); });
  run();
  EXPECT_THAT(log.lines(), ElementsAre("The main thread goes on after an exception: no"));
}

TEST_P(NSMainQueueQtBridgeTest, IsTheOnlyOne) {
  EXPECT_THROW(NSMainQueueQtBridge(), NSException);
  EXPECT_THROW(NSMainQueuePollBridge(), NSException);
}

TEST_P(NSMainQueueQtBridgeTest, IsTakenAwayWithTimersPending) {
  bool fired = false;
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; });
  bridge_.reset();
  QTimer::singleShot(10, [] { QCoreApplication::quit(); });
  run();
  EXPECT_FALSE(fired);
  timer->invalidate();
}

}  // namespace
}  // namespace ORLFoundation
