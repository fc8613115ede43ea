
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace ORLFoundation {
namespace {

class NSNotificationCenterTest : public testing::Test {
 protected:
  using Token = std::shared_ptr<NSNotificationObserver>;

  Token listen(std::optional<std::string> name, const std::shared_ptr<NSObject>& object,
               char mark) {
    return center_->addObserverForName(std::move(name), object,
                                       [this, mark](const NSNotification&) { heard_ += mark; });
  }

  const std::shared_ptr<NSNotificationCenter> center_ = std::make_shared<NSNotificationCenter>();
  const std::shared_ptr<NSObject> account_ = std::make_shared<NSObject>();
  const std::shared_ptr<NSObject> other_ = std::make_shared<NSObject>();
  std::string heard_;
};

TEST_F(NSNotificationCenterTest, DeliversByNameAndObjectInOrderOfRegistration) {
  const Token tokens[] = {listen("Changed", account_, 'a'), listen("Changed", nullptr, 'b'),
                          listen({}, account_, 'c'), listen({}, nullptr, 'd'),
                          listen("Removed", nullptr, 'e')};
  center_->postNotificationName("Changed", account_);
  EXPECT_EQ(std::exchange(heard_, ""), "abcd");
  center_->postNotificationName("Changed", other_);
  EXPECT_EQ(std::exchange(heard_, ""), "bd");
  center_->postNotificationName("Removed", nullptr);
  EXPECT_EQ(std::exchange(heard_, ""), "de");
  center_->postNotificationName("Changed", "plain values are no objects");
  EXPECT_EQ(heard_, "bd");
}

TEST_F(NSNotificationCenterTest, HandsOverNameObjectAndUserInformation) {
  std::string name;
  id object, value;
  const Token token = center_->addObserverForName("n", nullptr, [&](const NSNotification& posted) {
    name = posted.name();
    object = posted.object();
    value = posted.userInfo()->objectForKey("key");
  });
  center_->postNotificationName("n", account_, NSDictionary::dictionaryWithEntries({{"key", 7}}));
  EXPECT_EQ(name, "n");
  EXPECT_EQ(object, id(account_));
  EXPECT_EQ(value, id(7));
}

TEST_F(NSNotificationCenterTest, StopsWithTheTokenAndOnRemoval) {
  Token dropped = listen("n", nullptr, 'a');
  const Token removed = listen("n", nullptr, 'b');
  const Token kept = listen("n", nullptr, 'c');
  dropped.reset();
  center_->removeObserver(removed);
  center_->removeObserver(removed);
  center_->removeObserver(nullptr);
  center_->postNotificationName("n", nullptr);
  EXPECT_EQ(heard_, "c");
}

TEST_F(NSNotificationCenterTest, PassesOverReceiversThatAreRemovedMeanwhile) {
  Token second;
  const Token first = center_->addObserverForName(
      "n", nullptr, [&](const NSNotification&) { center_->removeObserver(second); });
  second = listen("n", nullptr, 'b');
  center_->postNotificationName("n", nullptr);
  EXPECT_EQ(heard_, "");
}

TEST_F(NSNotificationCenterTest, LetsAReceiverAddReceiversAndPost) {
  std::vector<Token> added;
  const Token token = center_->addObserverForName("n", nullptr, [&](const NSNotification&) {
    added.push_back(listen("n", nullptr, 'x'));
    center_->postNotificationName("m", nullptr);
  });
  const Token m = listen("m", nullptr, 'm');
  center_->postNotificationName("n", nullptr);
  EXPECT_EQ(std::exchange(heard_, ""), "m");
  center_->postNotificationName("n", nullptr);
  EXPECT_EQ(heard_, "mx");
}

TEST_F(NSNotificationCenterTest, ForgetsDeadObjects) {
  auto mortal = std::make_shared<NSObject>();
  const Token token = listen("n", mortal, 'a');
  mortal.reset();
  center_->postNotificationName("n", account_);
  center_->postNotificationName("n", nullptr);
  EXPECT_EQ(heard_, "");
}

TEST_F(NSNotificationCenterTest, IsOneForTheProcessByDefault) {
  EXPECT_EQ(NSNotificationCenter::defaultCenter(), NSNotificationCenter::defaultCenter());
}

TEST_F(NSNotificationCenterTest, TakesPostsAndRegistrationsFromManyThreads) {
  std::atomic<int> calls{0};
  const Token steady =
      center_->addObserverForName("n", nullptr, [&](const NSNotification&) { ++calls; });
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        const Token own =
            center_->addObserverForName("other", nullptr, [](const NSNotification&) {});
        center_->postNotificationName("n", nullptr);
        if (i % 2) center_->removeObserver(own);
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(calls, 800);
}

TEST(NSNotification, CopiesToItselfAndOneOnTheStackToOneThatTellsTheSame) {
  NSNotification posted("n", 7, NSDictionary::dictionaryWithEntries({{"key", "value"}}));
  const auto copy = std::dynamic_pointer_cast<NSNotification>(posted.copy());
  ASSERT_TRUE(copy);
  EXPECT_NE(copy.get(), &posted);
  EXPECT_EQ(copy->name(), "n");
  EXPECT_EQ(copy->object(), id(7));
  EXPECT_EQ(copy->userInfo(), posted.userInfo());
  EXPECT_EQ(copy->copy(), copy);
}

}  // namespace
}  // namespace ORLFoundation
