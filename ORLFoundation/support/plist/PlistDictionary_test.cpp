
#include <ORLFoundation/support/plist/PlistDictionary.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/plist/PlistDictionaryKey.h>
#include <ORLFoundation/support/plist/PlistDictionaryStorage.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

enum class Theme { kLight, kDark, kSecret };
enum class Depth { kFlat = 1, kDeep = 2 };

/// A class with a raw value of its own.
class Code {
 public:
  using RawValue = std::string;
  explicit Code(std::string text) : text_(std::move(text)) {}
  [[nodiscard]] std::string rawValue() const { return text_; }
  [[nodiscard]] static std::optional<Code> initWithRawValue(const std::string& raw) {
    if (raw.size() != 3) return std::nullopt;
    return Code(raw);
  }

 private:
  std::string text_;
};

class Window {
 public:
  explicit Window(ORLFoundation::PlistDictionary plistDictionary)
      : plistDictionary_(std::move(plistDictionary)) {}
  [[nodiscard]] const ORLFoundation::PlistDictionary& plistDictionary() const {
    return plistDictionary_;
  }

 private:
  ORLFoundation::PlistDictionary plistDictionary_;
};

}  // namespace

template <>
struct ORLFoundation::PlistRawValue<Theme> : PlistRawValueTable<Theme, std::string> {
  static constexpr Row kRows[] = {{Theme::kLight, "light"}, {Theme::kDark, "dark"}};
};
template <>
struct ORLFoundation::PlistRawValue<Depth> : PlistRawValueTable<Depth, std::int32_t> {
  static constexpr Row kRows[] = {{Depth::kFlat, 1}, {Depth::kDeep, 2}};
};

namespace ORLFoundation {
namespace {

static_assert(PlistConvertible<bool> && PlistConvertible<std::string> && PlistConvertible<NSDate>);
static_assert(PlistConvertible<PlistDictionary> && PlistConvertible<std::int64_t>);
static_assert(PlistConvertible<Theme> && PlistConvertible<Depth> && PlistConvertible<Code>);
static_assert(PlistConvertible<std::optional<bool>> && PlistConvertible<std::optional<Theme>>);
static_assert(PlistDictionaryStorage<Window> && PlistConvertible<Window>);
static_assert(!PlistDictionaryStorage<PlistDictionary> && !PlistDictionaryStorage<std::string>);
static_assert(!PlistConvertible<std::vector<bool>> && !PlistConvertible<std::optional<int*>>);

const PlistDictionaryKey<bool> kFlag{"flag"};
const PlistDictionaryKey<std::string> kText{"text"};
const PlistDictionaryKey<NSDate> kDate{"date"};
const PlistDictionaryKey<std::uint8_t> kByte{"byte"};
const PlistDictionaryKey<PlistDictionary> kInner{"inner"};
const PlistDictionaryKey<Theme> kTheme{"theme"};
const PlistDictionaryKey<Depth> kDepth{"depth"};
const PlistDictionaryKey<Code> kCode{"code"};
const PlistDictionaryKey<Window> kWindow{"window"};
const PlistDictionaryKey<std::optional<std::string>> kMaybe{"maybe"};

const PlistDictionary holding(std::string_view name, id value) {
  return *PlistDictionary::initWithValues(
      NSDictionary::dictionaryWithEntries({{name, std::move(value)}}));
}

TEST(PlistDictionary, BeginsEmpty) {
  EXPECT_TRUE(PlistDictionary().values().empty());
  EXPECT_EQ(PlistDictionary().dictionary()->count(), 0U);
  EXPECT_EQ(PlistDictionary()[kText], std::nullopt);
}

TEST(PlistDictionary, GivesBackWhatItWasGiven) {
  PlistDictionary dictionary;
  dictionary[kFlag] = true;
  dictionary[kText] = "two words";
  dictionary[kDate] = NSDate::dateWithTimeIntervalSinceReferenceDate(5);
  dictionary[kByte] = 200;
  dictionary[kInner] = holding("text", "within");
  dictionary[kTheme] = Theme::kDark;
  dictionary[kDepth] = Depth::kDeep;
  dictionary[kCode] = Code("EUR");
  dictionary[kWindow] = Window(holding("text", "glass"));
  dictionary[kMaybe] = "there";
  const PlistDictionary copy = dictionary;
  EXPECT_EQ(copy[kFlag], true);
  EXPECT_EQ(copy[kText], "two words");
  EXPECT_EQ(copy[kDate], NSDate::dateWithTimeIntervalSinceReferenceDate(5));
  EXPECT_EQ(copy[kByte], 200);
  EXPECT_EQ(copy[kInner].value()[kText], "within");
  EXPECT_EQ(copy[kTheme], Theme::kDark);
  EXPECT_EQ(copy[kDepth], Depth::kDeep);
  EXPECT_EQ(copy[kCode]->rawValue(), "EUR");
  EXPECT_EQ(copy[kWindow]->plistDictionary()[kText], "glass");
  EXPECT_EQ(copy[kMaybe], "there");
  EXPECT_EQ(dictionary[kText].value(), "two words");
  EXPECT_EQ(PlistDictionary::initWithValues(copy.dictionary()), copy);
}

TEST(PlistDictionary, StoresValuesOfPropertyLists) {
  PlistDictionary dictionary;
  dictionary[kFlag] = true;
  dictionary[kTheme] = Theme::kLight;
  dictionary[kWindow] = Window(holding("text", "glass"));
  EXPECT_EQ(dictionary.values().at("flag"), id(true));
  EXPECT_EQ(dictionary.values().at("theme"), id("light"));
  EXPECT_EQ(dictionary.values().at("window"),
            id(NSDictionary::dictionaryWithEntries({{"text", "glass"}})));
  EXPECT_TRUE(dictionary.dictionary()->isPropertyList());
}

TEST(PlistDictionary, TakesAnEntryAwayForNil) {
  PlistDictionary dictionary;
  dictionary[kText] = "a";
  dictionary[kText] = std::nullopt;
  dictionary[kMaybe] = "a";
  dictionary[kMaybe] = std::optional<std::string>();
  dictionary.setValueForKey(std::nullopt, kFlag);
  EXPECT_TRUE(dictionary.values().empty());
}

TEST(PlistDictionary, ReadsAValueThatDoesNotFitAsNil) {
  EXPECT_EQ(holding("flag", "true")[kFlag], std::nullopt);
  EXPECT_EQ(holding("text", 1)[kText], std::nullopt);
  EXPECT_EQ(holding("maybe", 1)[kMaybe], std::nullopt);
  EXPECT_EQ(holding("date", "today")[kDate], std::nullopt);
  EXPECT_EQ(holding("inner", NSArray::arrayWithObjects({}))[kInner], std::nullopt);
  EXPECT_EQ(holding("theme", "purple")[kTheme], std::nullopt);
  EXPECT_EQ(holding("theme", 1)[kTheme], std::nullopt);
  EXPECT_EQ(holding("depth", 3)[kDepth], std::nullopt);
  EXPECT_FALSE(holding("code", "EURO")[kCode]);
  EXPECT_FALSE(holding("window", "glass")[kWindow]);
  for (const id& value : {id(256), id(-1), id(1.5), id(1e300), id("1")})
    EXPECT_EQ(holding("byte", value)[kByte], std::nullopt) << value.description();
}

TEST(PlistDictionary, ReadsAnyNumberAsABoolean) {
  EXPECT_EQ(holding("flag", 0)[kFlag], false);
  EXPECT_EQ(holding("flag", 2.5)[kFlag], true);
}

TEST(PlistDictionary, KeepsAnEntryWhoseNewValueDoesNotConvert) {
  PlistDictionary dictionary;
  dictionary[kTheme] = Theme::kDark;
  EXPECT_THROW(dictionary[kTheme] = Theme::kSecret, NSException);
  EXPECT_EQ(dictionary[kTheme].value(), Theme::kDark);
}

TEST(PlistDictionary, IsMadeOfPropertyListsOnly) {
  const auto made = [](id key, id value) {
    return PlistDictionary::initWithValues(NSDictionary::dictionaryWithEntries({{key, value}}));
  };
  EXPECT_TRUE(made("a", NSArray::arrayWithObjects({1, "b"})));
  EXPECT_FALSE(made(1, "a"));
  EXPECT_FALSE(made("a", NSNull()));
  EXPECT_FALSE(made("a", NSUUID::UUID()));
  EXPECT_FALSE(made("a", NSArray::arrayWithObjects({NSNull()})));
  EXPECT_FALSE(PlistDictionary::initWithValues(nullptr));
}

TEST(PlistConversion, OfAnOptionalTellsNilFromWhatDoesNotFit) {
  using Conversion = PlistConversion<std::optional<Theme>>;
  EXPECT_EQ(Conversion::rawValue(std::nullopt), std::optional<std::optional<Theme>>(std::in_place));
  EXPECT_EQ(Conversion::rawValue("dark"), std::optional<std::optional<Theme>>(Theme::kDark));
  EXPECT_EQ(Conversion::rawValue("purple"), std::nullopt);
  EXPECT_EQ(Conversion::plistValue(std::nullopt), std::nullopt);
  EXPECT_EQ(Conversion::plistValue(Theme::kLight), "light");
}

}  // namespace
}  // namespace ORLFoundation
