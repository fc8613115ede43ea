#include <ORLFoundation/platform/dispatch/QueueTurn.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace ORLFoundation::internal::dispatch {
namespace {

TEST(QueueTurn, TakesAnIdleSerialQueueAlone) {
  const auto queue = dispatch_queue_create("turn", DISPATCH_QUEUE_SERIAL);
  std::string order;
  {
    const auto turn = QueueTurn::tryTake(queue);
    ASSERT_NE(turn, nullptr);
    EXPECT_EQ(QueueTurn::tryTake(queue), nullptr);
    dispatch_async(queue, [&] { order += "after"; });
    turn->run([&] {
      EXPECT_STREQ(dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL), "turn");
      order += "turn ";
    });
    EXPECT_STRNE(dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL), "turn");
  }
  dispatch_sync(queue, [&] { order += " end"; });
  EXPECT_EQ(order, "turn after end");
  EXPECT_NE(QueueTurn::tryTake(queue), nullptr);
}

TEST(QueueTurn, IsNotTakenFromOthers) {
  const auto queue = dispatch_queue_create("turn", DISPATCH_QUEUE_SERIAL);
  dispatch_sync(queue, [&] { EXPECT_EQ(QueueTurn::tryTake(queue), nullptr); });
  EXPECT_EQ(QueueTurn::tryTake(dispatch_get_main_queue()), nullptr);
}

TEST(QueueTurn, LeavesRoomInAConcurrentQueue) {
  const auto queue = dispatch_queue_create("turn", DISPATCH_QUEUE_CONCURRENT);
  const auto turn = QueueTurn::tryTake(queue);
  ASSERT_NE(turn, nullptr);
  EXPECT_NE(QueueTurn::tryTake(queue), nullptr);
  int calls = 0;
  turn->run([&] { dispatch_sync(queue, [&] { ++calls; }); });
  EXPECT_EQ(calls, 1);
}

TEST(QueueTurn, LetsAThreadThatWaitsComeNext) {
  const auto queue = dispatch_queue_create("turn", DISPATCH_QUEUE_SERIAL);
  int calls = 0;
  auto turn = QueueTurn::tryTake(queue);
  std::thread waiting([&] { dispatch_sync(queue, [&] { EXPECT_EQ(++calls, 2); }); });
  turn->run([&] { EXPECT_EQ(++calls, 1); });
  turn = nullptr;
  waiting.join();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace ORLFoundation::internal::dispatch
