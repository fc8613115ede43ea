
#include <ORLFoundation/platform/text/NSAttributedString.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <random>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSDictionary> attributes(std::initializer_list<std::pair<id, id>> entries) {
  return NSDictionary::dictionaryWithEntries(entries);
}

/// "value@location+length" of each stretch.
std::string stretches(const NSAttributedString& text, NSRange range, NSUInteger options = 0) {
  std::string found;
  text.enumerateAttribute("color", range, options, [&](const id& value, NSRange part, bool&) {
    found += value.description() + "@" + std::to_string(part.location) + "+" +
             std::to_string(part.length) + " ";
  });
  return found;
}

TEST(NSAttributedString, CountsUnits) {
  const NSAttributedString text("é😀\xFF");
  EXPECT_EQ(text.string(), "é😀\uFFFD");
  EXPECT_EQ(text.length(), 4U);
  EXPECT_EQ(NSAttributedString("").length(), 0U);
}

TEST(NSAttributedString, HasTheAttributesThatItIsMadeWith) {
  const NSAttributedString text("abc", attributes({{"color", "red"}}));
  NSRange range;
  EXPECT_EQ(text.attribute("color", 2, &range), id("red"));
  EXPECT_EQ(range, (NSRange{0, 3}));
  EXPECT_TRUE(text.attribute("font", 0).isNil());
  EXPECT_EQ(text.attributesAtIndex(0)->count(), 1U);
}

TEST(NSAttributedString, DoesNotFollowTheDictionaryThatItIsMadeWith) {
  const auto dictionary = std::make_shared<NSMutableDictionary>();
  dictionary->setObject("red", "color");
  const NSAttributedString text("abc", dictionary);
  dictionary->setObject("blue", "color");
  EXPECT_EQ(text.attribute("color", 0), id("red"));
}

TEST(NSMutableAttributedString, AddsAttributesToRanges) {
  NSMutableAttributedString text("abcdefgh");
  text.addAttribute("color", "red", {2, 4});
  text.addAttribute("color", "blue", {4, 3});
  EXPECT_EQ(stretches(text, {0, 8}), "(null)@0+2 red@2+2 blue@4+3 (null)@7+1 ");
  EXPECT_EQ(stretches(text, {3, 2}), "red@3+1 blue@4+1 ");
  EXPECT_EQ(stretches(text, {3, 0}), "");
  EXPECT_EQ(stretches(text, {0, 8}, NSAttributedStringEnumerationReverse),
            "(null)@7+1 blue@4+3 red@2+2 (null)@0+2 ");
}

TEST(NSMutableAttributedString, JoinsStretchesOfEqualValues) {
  NSMutableAttributedString text("abcdefgh");
  text.addAttribute("color", "red", {0, 3});
  text.addAttribute("font", "bold", {2, 2});
  text.addAttribute("color", "red", {3, 3});
  EXPECT_EQ(stretches(text, {0, 8}), "red@0+6 (null)@6+2 ");
  NSRange range;
  static_cast<void>(text.attribute("color", 4, &range));
  EXPECT_EQ(range, (NSRange{0, 6}));
  static_cast<void>(text.attributesAtIndex(4, &range));
  EXPECT_EQ(range, (NSRange{4, 2}));
}

TEST(NSMutableAttributedString, RemovesAndSetsAttributes) {
  NSMutableAttributedString text("abcdef", attributes({{"color", "red"}, {"font", "bold"}}));
  text.removeAttribute("color", {1, 2});
  text.setAttributes(nullptr, {4, 2});
  EXPECT_EQ(stretches(text, {0, 6}), "red@0+1 (null)@1+2 red@3+1 (null)@4+2 ");
  EXPECT_EQ(text.attributesAtIndex(2)->count(), 1U);
  text.addAttributes(*attributes({{"color", "blue"}, {"size", 12}}), {0, 6});
  EXPECT_EQ(stretches(text, {0, 6}), "blue@0+6 ");
  EXPECT_EQ(text.attribute("size", 5), id(12));
  EXPECT_EQ(text.attribute("font", 3), id("bold"));
}

TEST(NSMutableAttributedString, MayChangeWhileItIsWalkedOver) {
  NSMutableAttributedString text("abcd");
  text.addAttribute("color", "red", {1, 1});
  text.enumerateAttribute("color", {0, 4}, 0, [&](const id& value, NSRange range, bool&) {
    if (value.isNil()) text.addAttribute("color", "blue", range);
  });
  EXPECT_EQ(stretches(text, {0, 4}), "blue@0+1 red@1+1 blue@2+2 ");
}

TEST(NSAttributedString, StopsWhenToldTo) {
  NSMutableAttributedString text("abcd");
  text.addAttribute("color", "red", {1, 1});
  int calls = 0;
  text.enumerateAttribute("color", {0, 4}, 0,
                          [&](const id&, NSRange, bool& stop) { stop = ++calls == 2; });
  EXPECT_EQ(calls, 2);
}

TEST(NSAttributedString, RaisesForPlacesBeyondTheEnd) {
  NSMutableAttributedString text("abc");
  const auto ignore = [](const id&, NSRange, bool&) {};
  EXPECT_THROW(static_cast<void>(text.attribute("color", 3)), NSException);
  EXPECT_THROW(static_cast<void>(NSAttributedString("").attributesAtIndex(0)), NSException);
  EXPECT_THROW(text.enumerateAttribute("color", {2, 2}, 0, ignore), NSException);
  EXPECT_THROW(text.addAttribute("color", "red", {1, NSUIntegerMax}), NSException);
  EXPECT_THROW(text.addAttribute("color", nullptr, {0, 1}), NSException);
}

TEST(NSAttributedString, EqualsByTextAndAttributes) {
  const auto left = std::make_shared<NSMutableAttributedString>("abcd");
  const auto right = std::make_shared<NSMutableAttributedString>("abcd");
  left->addAttribute("color", "red", {0, 2});
  EXPECT_FALSE(left->isEqual(right.get()));
  right->addAttribute("color", "red", {0, 1});
  right->addAttribute("color", "red", {1, 1});
  EXPECT_TRUE(left->isEqual(right.get()));
  EXPECT_EQ(left->hash(), right->hash());
  EXPECT_FALSE(left->isEqual(nullptr));
  EXPECT_FALSE(NSAttributedString("a").isEqual(std::make_shared<NSAttributedString>("b").get()));
}

TEST(NSAttributedString, Copies) {
  const auto text = std::make_shared<NSMutableAttributedString>("ab");
  text->addAttribute("color", "red", {0, 1});
  const std::shared_ptr<NSObject> copy = text->copy();
  EXPECT_TRUE(copy->isEqual(text.get()));
  EXPECT_EQ(copy->className(), "NSAttributedString");
  EXPECT_EQ(copy->copy(), copy);
  text->addAttribute("color", "blue", {0, 2});
  EXPECT_FALSE(copy->isEqual(text.get()));
  EXPECT_EQ(copy->mutableCopy()->className(), "NSMutableAttributedString");
  EXPECT_TRUE(copy->mutableCopy()->isEqual(copy.get()));
}

TEST(NSAttributedString, DescribesItsStretches) {
  NSMutableAttributedString text("é late");
  text.addAttribute("color", "red", {2, 4});
  EXPECT_EQ(text.description(), "é {\n}late{\n    color = red;\n}");
}

TEST(NSMutableAttributedString, AgreesWithAListOfValues) {
  std::mt19937 random(7);
  const auto below = [&](NSUInteger end) { return static_cast<NSUInteger>(random()) % end; };
  constexpr NSUInteger kLength = 40;
  NSMutableAttributedString text(std::string(kLength, 'x'));
  std::vector<NSInteger> values(kLength, 0);
  for (int round = 0; round < 2000; ++round) {
    const NSUInteger location = below(kLength);
    const NSRange range{location, below(kLength - location + 1)};
    const auto value = static_cast<NSInteger>(below(4));
    if (value == 0) {
      text.removeAttribute("color", range);
    } else {
      text.addAttribute("color", value, range);
    }
    std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(location), range.length, value);
    for (NSUInteger at = 0; at < kLength; ++at)
      ASSERT_EQ(text.attribute("color", at).as<NSInteger>().value_or(0), values[at]) << round;
  }
}

TEST(NSAttributedString, CopiesOneOnTheStackToAnEqualOne) {
  NSAttributedString text("ab", attributes({{"color", "red"}}));
  orlftest::expectEqualCopyOfUnowned(text);
}

}  // namespace
}  // namespace ORLFoundation
