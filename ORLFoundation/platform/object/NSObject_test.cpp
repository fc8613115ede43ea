
#include <ORLFoundation/platform/object/NSObject.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

class Thing : public NSObject {
 public:
  [[nodiscard]] std::string className() const override { return "Thing"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override { return shared_from_this(); }
};

TEST(NSObject, EqualsOnlyItself) {
  const auto one = std::make_shared<Thing>();
  const auto other = std::make_shared<Thing>();
  EXPECT_TRUE(one->isEqual(one.get()));
  EXPECT_FALSE(one->isEqual(other.get()));
  EXPECT_FALSE(one->isEqual(nullptr));
  EXPECT_EQ(one->hash(), one->hash());
}

TEST(NSObject, DescribesItselfByClassAndAddress) {
  const std::string text = std::make_shared<Thing>()->description();
  EXPECT_EQ(text.rfind("<Thing: 0x", 0), 0U) << text;
  EXPECT_EQ(text.back(), '>');
}

TEST(NSObject, RefusesCopiesUnlessItsClassMakesThem) {
  EXPECT_THROW(static_cast<void>(std::make_shared<NSObject>()->copy()), NSException);
  EXPECT_THROW(static_cast<void>(std::make_shared<NSObject>()->mutableCopy()), NSException);
  const auto thing = std::make_shared<Thing>();
  EXPECT_EQ(copyOf(thing), thing);
  EXPECT_EQ(copyOf(std::shared_ptr<Thing>()), nullptr);
}

/// Copies to a new object that keeps the class of its receiver.
class Account : public NSObject {
 public:
  explicit Account(int balance = 0) : balance_(balance) {}
  [[nodiscard]] int balance() const { return balance_; }
  [[nodiscard]] std::string className() const override { return "Account"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    const auto copy = newObjectAs<Account>();
    copy->balance_ = balance_;
    return copy;
  }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<Account>();
  }

 private:
  int balance_;
};

class Savings final : public Account {
 public:
  using Account::Account;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<Savings>();
  }
};

class Forgetful final : public Account {
 public:
  using Account::Account;
};

class Empty final : public Account {
 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return nullptr;
  }
};

TEST(NSObject, CopiesToTheClassOfTheReceiver) {
  const auto savings = std::make_shared<Savings>(12);
  const auto copy = std::dynamic_pointer_cast<Savings>(savings->copy());
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, savings);
  EXPECT_EQ(copy->balance(), 12);
  EXPECT_EQ(copyOf(std::make_shared<Account>(5))->balance(), 5);
}

TEST(NSObject, RefusesACopyThatWouldLoseItsClass) {
  EXPECT_THROW(static_cast<void>(std::make_shared<Forgetful>(12)->copy()), NSException);
  EXPECT_THROW(static_cast<void>(std::make_shared<Empty>()->copy()), NSException);
}

TEST(NSObject, CarriesAttachedValuesUnderTextKeys) {
  const auto thing = std::make_shared<const Thing>();
  EXPECT_TRUE(thing->attachedValue("a").isNil());
  thing->setAttachedValue("a", 1);
  thing->setAttachedValue("b", "two");
  thing->setAttachedValue("a", 3);
  EXPECT_EQ(thing->attachedValue("a"), id(3));
  EXPECT_EQ(thing->attachedValue("b"), id("two"));
  thing->setAttachedValue("a", nullptr);
  EXPECT_TRUE(thing->attachedValue("a").isNil());
  EXPECT_EQ(thing->attachedValue("b"), id("two"));
}

TEST(NSObject, OwnsWhatIsAttachedToIt) {
  auto attached = std::make_shared<Thing>();
  const std::weak_ptr<Thing> weak = attached;
  auto thing = std::make_shared<Thing>();
  thing->setAttachedValue("a", std::move(attached));
  EXPECT_FALSE(weak.expired());
  thing->setAttachedValue("a", nullptr);
  EXPECT_TRUE(weak.expired());
  auto second = std::make_shared<Thing>();
  const std::weak_ptr<Thing> weakSecond = second;
  thing->setAttachedValue("a", std::move(second));
  thing.reset();
  EXPECT_TRUE(weakSecond.expired());
}

// An attached object that looks at its carrier while it is let go must not find it locked.
class Curious : public NSObject {
 public:
  explicit Curious(const NSObject& carrier) : carrier_(carrier) {}
  ~Curious() override { static_cast<void>(carrier_.attachedValue("a")); }

 private:
  const NSObject& carrier_;
};

TEST(NSObject, LetsGoOfAttachedValuesOutsideItsLock) {
  const auto thing = std::make_shared<Thing>();
  thing->setAttachedValue("a", std::make_shared<Curious>(*thing));
  thing->setAttachedValue("a", 1);
  thing->setAttachedValue("a", std::make_shared<Curious>(*thing));
  thing->setAttachedValue("a", nullptr);
  EXPECT_TRUE(thing->attachedValue("a").isNil());
}

TEST(NSObject, TakesAttachedValuesFromManyThreads) {
  const auto thing = std::make_shared<Thing>();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      const std::string own = "key" + std::to_string(t);
      for (int i = 0; i < 500; ++i) {
        thing->setAttachedValue(own, i);
        thing->setAttachedValue("shared", t);
        EXPECT_EQ(thing->attachedValue(own), id(i));
        EXPECT_FALSE(thing->attachedValue("shared").isNil());
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(thing->attachedValue("key3"), id(499));
}

TEST(NSObject, CostsAPointerUntilItIsUsed) {
  struct Bare : std::enable_shared_from_this<Bare> {
    virtual ~Bare() = default;
  };
  EXPECT_EQ(sizeof(NSObject), sizeof(Bare) + sizeof(void*));
}

class Fixed final : public NSObject {
 public:
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([] { return std::make_shared<Fixed>(); });
  }
};

TEST(NSObject, CopiesOneThatNeverChangesToItselfWhileAPointerOwnsIt) {
  const auto owned = std::make_shared<Fixed>();
  EXPECT_EQ(owned->copy(), owned);
  Fixed unowned;
  const auto copy = unowned.copy();
  EXPECT_TRUE(std::dynamic_pointer_cast<Fixed>(copy));
  EXPECT_NE(copy.get(), &unowned);
}

TEST(NSObject, AnswersItselfUnderItsKeyWhetherOrNotAPointerOwnsIt) {
  const auto owned = std::make_shared<const Thing>();
  EXPECT_EQ(owned->valueForKey("self").object(), owned);
  EXPECT_EQ(owned->receiverOrReference(), owned);
  EXPECT_EQ(owned->receiverOrReference().use_count(), 2);

  const Thing unowned;
  EXPECT_EQ(unowned.valueForKey("self").object().get(), &unowned);
  EXPECT_EQ(unowned.valueForKeyPath("self.className"), id("Thing"));
  EXPECT_EQ(unowned.receiverOrReference().use_count(), 0);
}

}  // namespace
}  // namespace ORLFoundation
