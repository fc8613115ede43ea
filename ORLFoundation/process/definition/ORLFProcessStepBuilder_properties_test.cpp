// The values of properties, under the locale of the process.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>

namespace ORLFoundation {
namespace {

using orlftest::Reading;

id valueOf(const NSDictionary::Entries& attributes, const char* locale = "en_US") {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>(locale));
  ORLFProcessStepBuilder builder;
  return builder.readPropertyValueFromAttributes(NSDictionary(attributes));
}

std::optional<NSNumber::Kind> kindOf(const id& value) {
  const NSNumber* const number = value.get<NSNumber>();
  return number ? std::optional(number->kind()) : std::nullopt;
}

/// Value and kind; text "x", nil "nil".
std::string described(const id& value) {
  const auto kind = kindOf(value);
  const std::string text = value.isNil() ? "nil" : value.description();
  return kind ? text + " of kind " + std::to_string(static_cast<int>(*kind)) : "\"" + text + "\"";
}

TEST(ORLFProcessProperty, ABooleanSaysYesOrNo) {
  for (const char* yes : {"YES", "Yes", "yes", "yEs"}) {
    EXPECT_EQ(valueOf({{"bool", yes}}), id(true)) << yes;
    EXPECT_EQ(kindOf(valueOf({{"bool", yes}})), kindOf(true)) << yes;
  }
  for (const char* no : {"NO", "No", "no", "nO"}) EXPECT_EQ(valueOf({{"bool", no}}), id(false));
  EXPECT_EQ(valueOf({{"bool", "yes"}, {"real", "2"}, {"int", "3"}, {"string", "x"}}), id(true));
}

TEST(ORLFProcessProperty, ABooleanOfAnotherTextIsANumberOrTheText) {
  EXPECT_EQ(valueOf({{"bool", "1"}}), id(1));
  EXPECT_NE(kindOf(valueOf({{"bool", "1"}})), kindOf(true));
  EXPECT_TRUE(valueOf({{"bool", "true"}}).isNil());
  EXPECT_EQ(valueOf({{"bool", "maybe"}, {"string", "x"}}), id("x"));
  EXPECT_TRUE(valueOf({{"bool", ""}}).isNil());
  EXPECT_TRUE(valueOf({{"bool", " yes"}}).isNil());
}

TEST(ORLFProcessProperty, TheFirstOfTheNumbersCounts) {
  EXPECT_EQ(valueOf({{"decimal", "4"}, {"bool", "3"}, {"int", "2"}, {"real", "1"}}), id(1));
  EXPECT_EQ(valueOf({{"decimal", "4"}, {"bool", "3"}, {"int", "2"}}), id(2));
  EXPECT_EQ(valueOf({{"decimal", "4"}, {"bool", "3"}}), id(3));
  EXPECT_EQ(valueOf({{"decimal", "4"}}), id(4));
  // One that is no number does not give way to the next.
  EXPECT_EQ(valueOf({{"real", "abc"}, {"int", "2"}, {"string", "x"}}), id("x"));
  EXPECT_TRUE(valueOf({{"real", "abc"}, {"int", "2"}}).isNil());
}

TEST(ORLFProcessProperty, TextStandsInForWhatIsNoNumber) {
  EXPECT_EQ(valueOf({{"int", "abc"}, {"string", "x"}}), id("x"));
  EXPECT_EQ(valueOf({{"string", "x"}}), id("x"));
  EXPECT_EQ(valueOf({{"string", ""}}), id(""));
  EXPECT_EQ(valueOf({{"string", "7"}}), id("7"));
  EXPECT_TRUE(valueOf({}).isNil());
  EXPECT_TRUE(valueOf({{"date", "x"}}).isNil());
}

TEST(ORLFProcessProperty, OnlyDecimalsAreDecimal) {
  EXPECT_EQ(kindOf(valueOf({{"decimal", "1.5"}})), kindOf(NSDecimal()));
  EXPECT_EQ(valueOf({{"decimal", "0.1"}}).description(), "0.1");
  for (const char* name : {"real", "int", "bool"})
    EXPECT_NE(kindOf(valueOf({{name, "1.5"}})), kindOf(NSDecimal())) << name;
  EXPECT_EQ(valueOf({{"int", "1.5"}}), id(1.5)) << "an int is not cut";
}

struct LocaleCase {
  const char* locale;
  const char* text;
  std::optional<double> value;
};

// Half and minus seven, in the marks of each locale, and what the others make of them.
const LocaleCase kLocales[] = {
    {"en_US", "1.5", 1.5},          {"en_US", "1,5", std::nullopt},
    {"en_US", "-7", -7.0},          {"de_DE", "1,5", 1.5},
    {"de_DE", "1.5", std::nullopt}, {"de_DE", "-7", -7.0},
    {"fr_FR", "1,5", 1.5},          {"fr_FR", "1.5", std::nullopt},
    {"fr_FR", "-7", -7.0},          {"ar_EG", "\u0661\u066b\u0665", 1.5},
    {"ar_EG", "1.5", std::nullopt}, {"ar_EG", "1,5", 1.5},
    {"ar_EG", "-7", -7.0},          {"ar_EG", "\u061c-\u0667", -7.0},
    {"ar_EG", "\u0667", 7.0},       {"ar_EG", "\u0661\u066c\u0662\u0663\u0664", std::nullopt},
    {"de_DE", "\u0667", 7.0},       {"en_US", "-\u0667", -7.0},
};

TEST(ORLFProcessProperty, NumbersFollowTheCurrentLocale) {
  for (const LocaleCase& row : kLocales) {
    for (const char* name : {"real", "int", "bool", "decimal"}) {
      const id value = valueOf({{name, row.text}, {"string", "text"}}, row.locale);
      const std::string what = std::string(row.locale) + " " + name + " " + row.text;
      EXPECT_EQ(described(value), described(row.value ? value : id("text"))) << what;
      EXPECT_EQ(row.value ? value.as<double>() : std::nullopt, row.value) << what;
    }
    EXPECT_EQ(valueOf({{"string", row.text}}, row.locale), id(row.text));
    EXPECT_EQ(valueOf({{"bool", "Yes"}}, row.locale), id(true));
    EXPECT_EQ(valueOf({{"bool", "No"}}, row.locale), id(false));
  }
}

TEST(ORLFProcessProperty, NumbersAreThoseOfAFormatterThatWasToldNothing) {
  for (const char* locale : {"en_US", "de_DE", "fr_FR", "ar_EG"}) {
    const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>(locale));
    for (const char* text : {"1,234", "1.234", "1 234", " 1", "1 ", "1e3", "+5", "", "\u0667",
                             "\u22125", "99999999999999999999", "0x10", "NaN", "\u221e", "--1"}) {
      NSNumberFormatter plain;
      for (const char* name : {"int", "real", "bool"})
        EXPECT_EQ(described(valueOf({{name, text}}, locale)),
                  described(id(plain.numberFromString(text))))
            << locale << " " << name << " " << text;
      NSNumberFormatter decimal;
      decimal.setGeneratesDecimalNumbers(true);
      EXPECT_EQ(described(valueOf({{"decimal", text}}, locale)),
                described(id(decimal.numberFromString(text))))
          << locale << " " << text;
    }
  }
}

TEST(ORLFProcessProperty, EntersTheStepAroundIt) {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
  Reading reading;
  static_cast<void>(reading.read(
      "<process rootstep='r'><step id='r' firststep='s'><representedobject type='t'><group>"
      "<property key='deep' int='1'/></group></representedobject><property key='beside' "
      "string='b'/><property key='gone' string='x'/><property key='gone'/><property "
      "key='twice' int='1'/><property key='twice' int='2'/><step id='s'><property key='own' "
      "bool='YES'/></step></step></process>"));
  ASSERT_EQ(reading.maker->calls.size(), 2U);
  const auto& data = *reading.maker->calls[0].data;
  EXPECT_EQ(data.count(), 3U);
  EXPECT_EQ(data.objectForKey("deep"), id(1));
  EXPECT_EQ(data.objectForKey("beside"), id("b"));
  EXPECT_EQ(data.objectForKey("twice"), id(2));
  EXPECT_EQ(reading.maker->calls[1].data->objectForKey("own"), id(true));
}

}  // namespace
}  // namespace ORLFoundation
