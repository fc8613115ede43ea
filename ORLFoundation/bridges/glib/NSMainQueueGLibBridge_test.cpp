#include <ORLFoundation/bridges/glib/NSMainQueueGLibBridge.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;

using Loop = std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)>;

/// Calls the function after some milliseconds of a context, once.
void after(GMainContext* context, guint milliseconds, std::function<void()> function) {
  GSource* const source = g_timeout_source_new(milliseconds);
  const auto call = [](gpointer data) -> gboolean {
    (*static_cast<std::function<void()>*>(data))();
    return G_SOURCE_REMOVE;
  };
  const auto drop = [](gpointer data) { delete static_cast<std::function<void()>*>(data); };
  g_source_set_callback(source, call, new std::function<void()>(std::move(function)), drop);
  g_source_attach(source, context);
  g_source_unref(source);
}

class NSMainQueueGLibBridgeTest : public testing::Test {
 protected:
  NSMainQueueGLibBridgeTest() {
    while (pumpMainQueue(0)) {
    }
    bridge_.emplace();
  }

  /// Runs the default context until something quits it, for 20 seconds at most.
  void run() {
    bool isLate = false;
    GSource* const limit = g_timeout_source_new_seconds(20);
    std::pair<bool*, GMainLoop*> late{&isLate, loop_.get()};
    g_source_set_callback(
        limit,
        [](gpointer data) -> gboolean {
          const auto& [flag, loop] = *static_cast<std::pair<bool*, GMainLoop*>*>(data);
          *flag = true;
          g_main_loop_quit(loop);
          return G_SOURCE_CONTINUE;
        },
        &late, nullptr);
    g_source_attach(limit, nullptr);
    g_main_loop_run(loop_.get());
    g_source_destroy(limit);
    g_source_unref(limit);
    EXPECT_FALSE(isLate);
  }
  void quit() { g_main_loop_quit(loop_.get()); }

  const Loop loop_{g_main_loop_new(nullptr, FALSE), &g_main_loop_unref};
  std::optional<NSMainQueueGLibBridge> bridge_;
  const dispatch_queue_t& main_ = dispatch_get_main_queue();
};

TEST_F(NSMainQueueGLibBridgeTest, ServesItemsAndTimers) {
  std::vector<int> order;
  NSTimer::scheduledTimerWithTimeInterval(0.005, false, [&](NSTimer&) {
    order.push_back(2);
    quit();
  });
  dispatch_async(main_, [&] { order.push_back(1); });
  run();
  EXPECT_THAT(order, ElementsAre(1, 2));
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), [&] {
    dispatch_sync(main_, [&] {
      EXPECT_TRUE(NSThread::isMainThread());
      quit();
    });
  });
  run();
}

TEST_F(NSMainQueueGLibBridgeTest, ServesFromAChosenContextOnItsThread) {
  bridge_.reset();
  struct Ran {
    GThread* thread = nullptr;
    bool isMain = false;
  } ran;
  GThread* const thread = g_thread_new(
      "host",
      [](gpointer data) -> gpointer {
        auto& noted = *static_cast<Ran*>(data);
        GMainContext* const context = g_main_context_new();
        g_main_context_push_thread_default(context);
        const Loop loop(g_main_loop_new(context, FALSE), &g_main_loop_unref);
        {
          const NSMainQueueGLibBridge bridge(context);
          dispatch_async(dispatch_get_main_queue(), [&] {
            noted.thread = g_thread_self();
            noted.isMain = NSThread::isMainThread();
            g_main_loop_quit(loop.get());
          });
          g_main_loop_run(loop.get());
        }
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
        return nullptr;
      },
      &ran);
  g_thread_join(thread);
  EXPECT_EQ(ran.thread, thread);
  EXPECT_TRUE(ran.isMain);
  EXPECT_TRUE(NSThread::isMainThread());
}

TEST_F(NSMainQueueGLibBridgeTest, ALoopWithinAnItemServesTheRest) {
  std::vector<int> order;
  const Loop modal(g_main_loop_new(nullptr, FALSE), &g_main_loop_unref);
  dispatch_async(main_, [&] {
    order.push_back(1);
    g_main_loop_run(modal.get());
    order.push_back(4);
    quit();
  });
  dispatch_async(main_, [&] {
    order.push_back(2);
    NSTimer::scheduledTimerWithTimeInterval(0.002, false, [&](NSTimer&) {
      order.push_back(3);
      g_main_loop_quit(modal.get());
    });
  });
  run();
  EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST_F(NSMainQueueGLibBridgeTest, IsQuietWhileThereIsNothingToDo) {
  const auto timer = NSTimer::scheduledTimerWithTimeInterval(100, true, {});
  while (g_main_context_iteration(nullptr, FALSE)) {
  }
  bool isOver = false;
  after(nullptr, 300, [&] { isOver = true; });
  int wakes = 0;
  for (; !isOver; ++wakes) g_main_context_iteration(nullptr, TRUE);
  EXPECT_EQ(wakes, 1) << "the host's own";
  timer->invalidate();
}

TEST_F(NSMainQueueGLibBridgeTest, ABlockThatPostsItselfLeavesTheHostItsTurns) {
  bool isOver = false;
  std::function<void()> again = [&] {
    if (!isOver) dispatch_async(main_, again);
  };
  dispatch_async(main_, again);
  after(nullptr, 5, [&] {
    isOver = true;
    quit();
  });
  run();
  EXPECT_TRUE(isOver);
  while (pumpMainQueue(0)) {
  }
}

TEST_F(NSMainQueueGLibBridgeTest, NoExceptionReachesTheHost) {
  LogCapture log;
  dispatch_async(main_, [] { throw std::runtime_error("no"); });
  dispatch_async(main_, [&] { quit(); });
  run();
  EXPECT_THAT(log.lines(), ElementsAre("The main thread goes on after an exception: no"));
}

TEST_F(NSMainQueueGLibBridgeTest, IsTheOnlyOne) {
  EXPECT_THROW(NSMainQueueGLibBridge(), NSException);
  EXPECT_THROW(NSMainQueuePollBridge(), NSException);
}

TEST_F(NSMainQueueGLibBridgeTest, IsTakenAwayWithTimersPending) {
  bool fired = false;
  const auto timer =
      NSTimer::scheduledTimerWithTimeInterval(0.001, false, [&](NSTimer&) { fired = true; });
  bridge_.reset();
  after(nullptr, 10, [&] { quit(); });
  run();
  EXPECT_FALSE(fired);
  timer->invalidate();
}

}  // namespace
}  // namespace ORLFoundation
