
#include <ORLFoundation/platform/object/NSKeyTable.h>

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gtest/gtest.h>

#include <optional>

namespace ORLFoundation {
namespace {

using orlftest::nameOfException;

enum Level : std::int64_t { LevelLow = 1, LevelHigh = 5 };

class Node : public NSObject {
 public:
  [[nodiscard]] const std::string& name() const { return name_; }
  void setName(const std::string& name) { name_ = name; }
  [[nodiscard]] NSInteger count() const noexcept { return count_; }
  void setCount(NSInteger count) noexcept { count_ = count; }
  [[nodiscard]] Level level() const { return level_; }
  void setLevel(Level level) { level_ = level; }
  [[nodiscard]] std::optional<NSDate> date() const { return date_; }
  void setDate(std::optional<NSDate> date) { date_ = date; }
  [[nodiscard]] std::optional<NSDecimal> amount() const { return amount_; }
  void setAmount(const std::optional<NSDecimal>& amount) { amount_ = amount; }
  [[nodiscard]] const std::shared_ptr<Node>& next() const { return next_; }
  void setNext(std::shared_ptr<Node> next) { next_ = std::move(next); }
  [[nodiscard]] const std::vector<std::shared_ptr<Node>>& members() const { return members_; }
  void setMembers(std::vector<std::shared_ptr<Node>> members) { members_ = std::move(members); }
  [[nodiscard]] std::weak_ptr<Node> parent() const { return parent_; }
  void setParent(const std::shared_ptr<Node>& parent) { parent_ = parent; }
  [[nodiscard]] id anything() const { return anything_; }
  void setAnything(const id& anything) { anything_ = anything; }

  [[nodiscard]] std::string className() const override { return "Node"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        NSObject::keyTable(), {NSKey::readWrite<&Node::name, &Node::setName>("name"),
                               NSKey::readWrite<&Node::count, &Node::setCount>("count"),
                               NSKey::readWrite<&Node::level, &Node::setLevel>("level"),
                               NSKey::readWrite<&Node::date, &Node::setDate>("date"),
                               NSKey::readWrite<&Node::amount, &Node::setAmount>("amount"),
                               NSKey::readWrite<&Node::next, &Node::setNext>("next"),
                               NSKey::readWrite<&Node::members, &Node::setMembers>("members"),
                               NSKey::readWrite<&Node::parent, &Node::setParent>("parent"),
                               NSKey::readWrite<&Node::anything, &Node::setAnything>("anything")});
    return table;
  }

 private:
  std::string name_;
  NSInteger count_ = 0;
  Level level_ = LevelLow;
  std::optional<NSDate> date_;
  std::optional<NSDecimal> amount_;
  std::shared_ptr<Node> next_;
  std::vector<std::shared_ptr<Node>> members_;
  std::weak_ptr<Node> parent_;
  id anything_;
};

/// Adds a key, replaces one, and knows every key that is not declared.
class OpenNode final : public Node {
 public:
  [[nodiscard]] std::string shout() const { return name() + "!"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(Node::keyTable(),
                                  {NSKey::readOnly<&OpenNode::shout>("name"),
                                   NSKey::readOnly<&OpenNode::shout>("shout", {"name"})});
    return table;
  }
  [[nodiscard]] id valueForUndefinedKey(std::string_view key) const override {
    return extra_->objectForKey(key);
  }
  void setValueForUndefinedKey(const id& value, std::string_view key) override {
    extra_->setObject(value, key);
  }

 private:
  std::shared_ptr<NSMutableDictionary> extra_ = std::make_shared<NSMutableDictionary>();
};

struct RoundTripCase {
  const char* key;
  id value;
};
const RoundTripCase kRoundTrips[] = {
    {"name", "Ada"},
    {"count", -3},
    {"level", 5},
    {"date", NSDate()},
    {"date", nullptr},
    {"amount", NSDecimal::parse("1.25")},
    {"next", std::make_shared<Node>()},
    {"next", nullptr},
    {"members", NSArray::arrayWithObjects({std::make_shared<Node>(), std::make_shared<Node>()})},
    {"members", NSArray::arrayWithObjects({})},
    {"anything", NSNull()},
};

TEST(NSKeyTable, SetsAndReadsEveryTypeOfProperty) {
  const auto node = std::make_shared<Node>();
  for (const auto& row : kRoundTrips) {
    node->setValueForKey(row.value, row.key);
    EXPECT_EQ(node->valueForKey(row.key), row.value) << row.key;
  }
  EXPECT_EQ(node->level(), LevelHigh);
}

TEST(NSKeyTable, ReadsWeakReferences) {
  auto parent = std::make_shared<Node>();
  const auto node = std::make_shared<Node>();
  node->setValueForKey(parent, "parent");
  EXPECT_EQ(node->valueForKey("parent"), id(parent));
  parent.reset();
  EXPECT_TRUE(node->valueForKey("parent").isNil());
}

TEST(NSKeyTable, TakesNullForNilWhereThereIsANil) {
  const auto node = std::make_shared<Node>();
  node->setDate(NSDate());
  node->setValueForKey(NSNull(), "date");
  EXPECT_EQ(node->date(), std::nullopt);
}

const RoundTripCase kWrongKinds[] = {
    {"name", 1},
    {"count", "1"},
    {"count", nullptr},
    {"date", "today"},
    {"amount", "1.2"},
    {"next", "x"},
    {"next", NSArray::arrayWithObjects({})},
    {"members", 1},
    {"members", NSArray::arrayWithObjects({1})},
    {"name", nullptr},
};

TEST(NSKeyTable, RaisesForValuesOfTheWrongKind) {
  const auto node = std::make_shared<Node>();
  node->setCount(7);
  for (const auto& row : kWrongKinds)
    EXPECT_EQ(nameOfException([&] { node->setValueForKey(row.value, row.key); }),
              NSInvalidArgumentException)
        << row.key << " " << row.value.description();
  EXPECT_EQ(node->count(), 7);
}

TEST(NSKeyTable, RaisesForKeysThatTheClassDoesNotHave) {
  const auto node = std::make_shared<Node>();
  EXPECT_EQ(nameOfException([&] { static_cast<void>(node->valueForKey("size")); }),
            NSUndefinedKeyException);
  EXPECT_EQ(nameOfException([&] { node->setValueForKey(1, "size"); }), NSUndefinedKeyException);
  EXPECT_EQ(nameOfException([&] { node->setValueForKey("x", "description"); }),
            NSUndefinedKeyException);
}

TEST(NSKeyTable, InheritsTheKeysOfTheRoot) {
  const auto node = std::make_shared<Node>();
  EXPECT_EQ(node->valueForKey("className"), id("Node"));
  EXPECT_EQ(node->valueForKey("description"), id(node->description()));
  EXPECT_EQ(node->valueForKey("hash"), id(node->hash()));
  EXPECT_EQ(node->valueForKey("self"), id(node));
}

TEST(NSKeyTable, LetsASubclassAddAndReplaceKeys) {
  const auto node = std::make_shared<OpenNode>();
  node->setName("Ada");
  EXPECT_EQ(node->valueForKey("name"), id("Ada!"));
  EXPECT_EQ(node->valueForKey("shout"), id("Ada!"));
  EXPECT_EQ(node->valueForKey("count"), id(0));
  EXPECT_EQ(node->keyPathsForValuesAffectingValueForKey("shout"), std::vector<std::string>{"name"});
  EXPECT_TRUE(node->keyPathsForValuesAffectingValueForKey("nothing").empty());
}

TEST(NSKeyTable, HandsUndefinedKeysToTheHooks) {
  const auto node = std::make_shared<OpenNode>();
  EXPECT_TRUE(node->valueForKey("color").isNil());
  node->setValueForKey("red", "color");
  EXPECT_EQ(node->valueForKey("color"), id("red"));
}

TEST(NSKeyTable, FollowsKeyPaths) {
  const auto node = std::make_shared<Node>();
  node->setNext(std::make_shared<Node>());
  node->next()->setNext(std::make_shared<Node>());
  node->setValueForKeyPath("deep", "next.next.name");
  EXPECT_EQ(node->next()->next()->name(), "deep");
  EXPECT_EQ(node->valueForKeyPath("next.next.name"), id("deep"));
  EXPECT_TRUE(node->valueForKeyPath("next.next.next.name").isNil());
  node->setValueForKeyPath("lost", "next.next.next.name");
  EXPECT_EQ(nameOfException([&] { node->setValueForKeyPath(1, "name.length"); }),
            NSUndefinedKeyException);
  const auto second = std::make_shared<Node>();
  second->setCount(4);
  node->next()->setCount(2);
  node->setMembers({node->next(), second});
  EXPECT_EQ(node->valueForKeyPath("members.@sum.count"), id(6));
  EXPECT_EQ(node->valueForKeyPath("members.@max.count"), id(4));
}

}  // namespace
}  // namespace ORLFoundation
