
#include <ORLFoundation/platform/format/internal/NumberReading.h>

#include <ORLFoundation/platform/format/NSLocale.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

namespace ORLFoundation::internal::format {
namespace {

constexpr const char* kLocales[] = {"en_US", "de_DE", "fr_FR", "en_IN", "de_CH", "es_ES", "pl_PL",
                                    "ja_JP", "ar_EG", "hi_IN", "fa_IR", "he_IL", "sv_SE", "my_MM",
                                    "pt_PT", "hu_HU", "lt_LT", "en_ZA", "bn_BD", "th_TH"};

// The pieces that numbers and their neighbours are made of, each so often as it stands there.
constexpr const char* kPieces[] = {"0", "1",  "2",   "9",   "12",     "123",    "1234567", ".",
                                   ".", ",",  ",",   "123", "'",      " ",      "+",       "-",
                                   "*", "/",  "[",   "]",   "e",      "E5",     "%",       "$",
                                   "5", "50", "000", "x",   "\u00A0", "\u066B", "\u2019",  "one"};

std::string randomText(std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> piece(0, std::size(kPieces) - 1);
  std::string text = std::to_string(random() % 2000);
  for (auto left = random() % 6; left > 0; --left) text += kPieces[piece(random)];
  return text;
}

std::string told(const std::optional<NumberReading>& reading) {
  if (!reading) return "nil";
  return std::to_string(static_cast<int>(reading->number.kind())) + " " +
         reading->number.stringValue() + " of " + std::to_string(reading->length);
}

// Runs texts through both ways; answers how many the quick one took.
int sweep(NumberFormats& formats, int texts, std::mt19937& random) {
  int quick = 0;
  for (int i = 0; i < texts; ++i) {
    const std::string string = randomText(random);
    NSNumberText text(string);
    formats.settings.generatesDecimals = random() % 2 == 0;
    const auto plain =
        readPlainNumber(formats.plainMarks(), formats.settings.generatesDecimals, text.units());
    if (!plain) continue;
    ++quick;
    EXPECT_EQ(told(plain), told(readNumberByICU(formats, text, text.range())))
        << string << " in " << formats.settings.locale->localeIdentifier() << ", style "
        << formats.settings.style << ", lenient " << formats.settings.isLenient;
  }
  return quick;
}

TEST(NumberReading, ReadsPlainNumbersAsICUDoes) {
  std::mt19937 random(11);
  for (const char* locale : kLocales) {
    NumberFormats formats;
    formats.settings.locale = std::make_shared<NSLocale>(locale);
    formats.changedLocale();
    for (const bool lenient : {false, true}) {
      formats.settings.isLenient = lenient;
      formats.changedDetails();
      for (NSUInteger style = 0; style <= NSNumberFormatterPercentStyle; ++style) {
        formats.settings.style = static_cast<NSNumberFormatterStyle>(style);
        const bool hasQuickWay = formats.plainMarks().reach != PlainMarks::Reach::Nothing;
        EXPECT_EQ(sweep(formats, 400, random) > 0, hasQuickWay) << locale << style;
      }
    }
  }
}

TEST(NumberReading, ReadsPlainDigitsAsTheSpelledOutStyleDoes) {
  std::mt19937 random(12);
  for (const char* locale : kLocales) {
    NumberFormats formats;
    formats.settings.locale = std::make_shared<NSLocale>(locale);
    formats.settings.style = NSNumberFormatterSpellOutStyle;
    EXPECT_GT(sweep(formats, 60, random), 0) << locale;
  }
}

TEST(NumberReading, GivesUpPlainReadingWhereICUMustSay) {
  const PlainMarks marks{.reach = PlainMarks::Reach::Fractions, .decimal = u'.', .grouping = u','};
  const auto read = [&marks](std::u16string_view text) {
    return told(readPlainNumber(marks, true, text));
  };
  EXPECT_EQ(read(u"12.50"), "4 12.5 of 5");
  EXPECT_EQ(read(u"1,234,567.8+1"), "4 1234567.8 of 11");
  EXPECT_EQ(read(u"999999999999999999"), "4 999999999999999999 of 18");
  for (const std::u16string_view text :
       {u"", u"-1", u".5", u"5.", u"1,23", u"1234,567", u"1,2345", u"5 ", u"5x", u"5%",
        u"1000000000000000000", u"1,234,", u"1.2.3"})
    EXPECT_EQ(read(text), "nil") << std::string(text.begin(), text.end());
}

}  // namespace
}  // namespace ORLFoundation::internal::format
