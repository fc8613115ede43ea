
#include <ORLFoundation/platform/dispatch/dispatch_source.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::comes;

/// A pipe, whose reading end a source follows and its cancel handler closes.
class dispatch_sourceTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(::pipe(ends_.data()), 0); }
  void TearDown() override {
    if (ends_[1] >= 0) ::close(ends_[1]);
    if (ends_[0] >= 0) ::close(ends_[0]);
  }
  void write(const std::string& text) const {
    ASSERT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  [[nodiscard]] std::string read(std::size_t most = 100) const {
    std::string text(most, '\0');
    const ssize_t size = ::read(ends_[0], text.data(), most);
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return text;
  }
  [[nodiscard]] dispatch_source_t makeSource(
      dispatch_source_type_t type = DISPATCH_SOURCE_TYPE_READ) const {
    return dispatch_source_create(type, ends_[type == DISPATCH_SOURCE_TYPE_READ ? 0 : 1], 0,
                                  queue_);
  }

  std::array<int, 2> ends_{-1, -1};
  dispatch_queue_t queue_ = dispatch_queue_create("source", DISPATCH_QUEUE_SERIAL);
  dispatch_semaphore_t event_ = dispatch_semaphore_create(0);
  dispatch_semaphore_t ended_ = dispatch_semaphore_create(0);
};

TEST_F(dispatch_sourceTest, HandlesWhatCanBeReadOnItsQueue) {
  const auto source = makeSource();
  std::string text;
  dispatch_source_set_event_handler(source, [&] {
    EXPECT_STREQ(dispatch_queue_get_label(nullptr), "source");
    EXPECT_EQ(dispatch_source_get_data(source), 5U);
    text += read();
    dispatch_semaphore_signal(event_);
  });
  dispatch_resume(source);
  for (const char* word : {"first", "other"}) {
    write(word);
    ASSERT_TRUE(comes(event_));
  }
  dispatch_source_cancel(source);
  dispatch_sync(queue_, [] {});
  EXPECT_EQ(text, "firstother");
}

TEST_F(dispatch_sourceTest, CallsAgainWhileSomethingIsLeft) {
  const auto source = makeSource();
  std::string text;
  dispatch_source_set_event_handler(source, [&] {
    text += read(1);
    dispatch_semaphore_signal(event_);
  });
  dispatch_resume(source);
  write("abc");
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(comes(event_));
  dispatch_source_cancel(source);
  dispatch_sync(queue_, [] {});
  EXPECT_EQ(text, "abc");
}

TEST_F(dispatch_sourceTest, IsNeverCalledTwiceAtATime) {
  queue_ = dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0);
  const auto source = makeSource();
  std::atomic<int> inside = 0;
  dispatch_source_set_event_handler(source, [&] {
    EXPECT_EQ(++inside, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(read(1).size(), 1U);
    --inside;
    dispatch_semaphore_signal(event_);
  });
  dispatch_source_set_cancel_handler(source, [&] {
    EXPECT_EQ(inside, 0);
    dispatch_semaphore_signal(ended_);
  });
  dispatch_resume(source);
  write("0123456789");
  for (int i = 0; i < 5; ++i) ASSERT_TRUE(comes(event_));
  dispatch_source_cancel(source);
  ASSERT_TRUE(comes(ended_));
}

TEST_F(dispatch_sourceTest, TellsOfRoomToWrite) {
  const auto source = makeSource(DISPATCH_SOURCE_TYPE_WRITE);
  dispatch_source_set_event_handler(source, [&] {
    dispatch_source_cancel(source);
    dispatch_semaphore_signal(event_);
  });
  EXPECT_EQ(dispatch_source_get_data(source), 0U);
  dispatch_resume(source);
  ASSERT_TRUE(comes(event_));
}

TEST_F(dispatch_sourceTest, TellsThatTheOtherEndWasClosed) {
  const auto source = makeSource();
  dispatch_source_set_event_handler(source, [&] {
    EXPECT_EQ(dispatch_source_get_data(source), 0U);
    EXPECT_EQ(read(), "");
    dispatch_source_cancel(source);
    dispatch_semaphore_signal(event_);
  });
  dispatch_resume(source);
  ::close(ends_[1]);
  ends_[1] = -1;
  ASSERT_TRUE(comes(event_));
}

TEST_F(dispatch_sourceTest, HandlesNothingBeforeItIsResumedOrAfterItsCancellation) {
  const auto source = makeSource();
  std::atomic<int> events = 0;
  dispatch_source_set_event_handler(source, [&] { ++events; });
  dispatch_source_set_cancel_handler(source, [&] {
    EXPECT_STREQ(dispatch_queue_get_label(nullptr), "source");
    dispatch_semaphore_signal(ended_);
  });
  write("a");
  EXPECT_EQ(dispatch_source_testcancel(source), 0);
  dispatch_source_cancel(source);
  dispatch_source_cancel(source);
  EXPECT_NE(dispatch_source_testcancel(source), 0);
  dispatch_resume(source);
  ASSERT_TRUE(comes(ended_));
  dispatch_sync(queue_, [] {});
  EXPECT_NE(dispatch_semaphore_wait(ended_, DISPATCH_TIME_NOW), 0) << "cancelled twice";
  EXPECT_EQ(events, 0);
}

TEST_F(dispatch_sourceTest, LivesUntilItIsCancelledAndThenDropsItsHandlers) {
  auto source = makeSource();
  const std::weak_ptr<void> weak = source;
  const auto held = std::make_shared<int>(0);
  dispatch_source_set_event_handler(source, [this, held] {
    EXPECT_EQ(read(), "a");
    dispatch_semaphore_signal(event_);
  });
  dispatch_source_set_cancel_handler(source, [this, held] { dispatch_semaphore_signal(ended_); });
  dispatch_resume(source);
  source = nullptr;
  write("a");
  ASSERT_TRUE(comes(event_));
  source = std::static_pointer_cast<internal::dispatch::Source>(weak.lock());
  ASSERT_NE(source, nullptr);
  dispatch_source_cancel(source);
  ASSERT_TRUE(comes(ended_));
  dispatch_sync(queue_, [] {});
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(dispatch_sourceTest, GoesOnWhenItsHandlerThrowsOutOfTheMainQueue) {
  while (pumpMainQueue(0)) continue;
  queue_ = dispatch_get_main_queue();
  const auto source = makeSource();
  std::string text;
  bool isCancelled = false;
  dispatch_source_set_event_handler(source, [&] {
    text += read();
    if (text == "first last") dispatch_source_cancel(source);
    throw std::runtime_error("refused");
  });
  dispatch_source_set_cancel_handler(source, [&] { isCancelled = true; });
  dispatch_resume(source);
  for (const char* word : {"first ", "last"}) {
    write(word);
    EXPECT_THROW(pumpMainQueue(20), std::runtime_error);
  }
  EXPECT_EQ(text, "first last");
  EXPECT_TRUE(isCancelled);
}

TEST_F(dispatch_sourceTest, IsNilForWhatItCannotFollow) {
  constexpr auto kRead = DISPATCH_SOURCE_TYPE_READ;
  EXPECT_EQ(dispatch_source_create(kRead, -1, 0, queue_), nullptr);
  EXPECT_EQ(dispatch_source_create(kRead, ends_[0], 1, queue_), nullptr);
  EXPECT_EQ(dispatch_source_create(kRead, ends_[0], 0, nullptr), nullptr);
  EXPECT_EQ(dispatch_source_create(static_cast<dispatch_source_type_t>(7), ends_[0], 0, queue_),
            nullptr);
}

}  // namespace
}  // namespace ORLFoundation
