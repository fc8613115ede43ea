
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <ORLFoundation/platform/format/NSStringLocalizedCase.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/support/strings/ORLFPredicateUtilities.h>
#include <ORLFoundation/support/strings/internal/ORLFPredicateFormat.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::JsonCheck;

std::string textOf(const Json& value) { return value.get<std::string>(); }

/// The bytes of Base64 text, which the library's own reader of it knows nothing of.
NSData dataOf(const std::string& base64) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<std::uint8_t> bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : base64.substr(0, base64.find('='))) {
    bits = bits << 6 | static_cast<std::uint32_t>(kDigits.find(c));
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<std::uint8_t>(bits >> count));
  }
  return NSData(std::move(bytes));
}

double realOf(const Json& value) {
  if (value == "inf") return std::numeric_limits<double>::infinity();
  if (value == "-inf") return -std::numeric_limits<double>::infinity();
  return value.get<double>();
}

template <class Function>
JsonCheck ofText(Function function) {
  return [function](const Json& in, const Json& out) {
    return disagreement(out, Json(function(textOf(in))));
  };
}

template <class Function>
JsonCheck ofTwoTexts(Function function) {
  return [function](const Json& in, const Json& out) {
    return disagreement(out, Json(function(textOf(in[0]), textOf(in[1]))));
  };
}

TEST(Texts, AgreeWithVectorsOfNumbers) {
  orlftest::runJsonVectors(
      "texts_numbers",
      {{"integerValue",
        ofText([](const auto& text) { return std::to_string(integerValue(text)); })},
       {"longLongValue",
        ofText([](const auto& text) { return std::to_string(longLongValue(text)); })},
       {"doubleValue",
        [](const Json& in, const Json& out) {
          return disagreement(realOf(out), doubleValue(textOf(in)));
        }},
       {"boolValue", ofText(boolValue)}});
}

TEST(Texts, AgreeWithVectorsOfCase) {
  const auto locale = std::make_shared<NSLocale>("en_US");
  orlftest::runJsonVectors(
      "texts_case",
      {{"capitalizedString", ofText(capitalizedString)},
       {"localizedCapitalizedString",
        ofText([&](const auto& text) { return localizedCapitalizedString(text, locale); })},
       {"uppercaseString", ofText(uppercaseString)},
       {"lowercaseString", ofText(lowercaseString)},
       {"orlfCapitalizedStringPreservingCase", ofText(orlfCapitalizedStringPreservingCase)}});
}

TEST(Texts, AgreeWithVectorsOfComparison) {
  orlftest::runJsonVectors(
      "texts_compare",
      {{"compare", ofTwoTexts([](const auto& a, const auto& b) { return compare(a, b); })},
       {"caseInsensitiveCompare", ofTwoTexts(caseInsensitiveCompare)},
       {"orlfCaseInsensitiveSortCompare", ofTwoTexts(orlfCaseInsensitiveSortCompare)},
       {"orlfContainsString", ofTwoTexts(orlfContainsString)},
       {"orlfContainsComponents", [](const Json& in, const Json& out) {
          return disagreement(
              out, Json(orlfContainsComponents(textOf(in["text"]),
                                               in["components"].get<std::vector<std::string>>())));
        }}});
}

using NamedSet = const std::shared_ptr<NSCharacterSet>& (*)();

NamedSet setNamed(const std::string& name) {
  static const std::map<std::string, NamedSet> kSets = {
      {"whitespace", NSCharacterSet::whitespaceCharacterSet},
      {"newline", NSCharacterSet::newlineCharacterSet},
      {"newlines", NSCharacterSet::newlineCharacterSet},
      {"whitespaceAndNewline", NSCharacterSet::whitespaceAndNewlineCharacterSet},
      {"whitespacesAndNewlines", NSCharacterSet::whitespaceAndNewlineCharacterSet},
      {"decimalDigit", NSCharacterSet::decimalDigitCharacterSet},
      {"letter", NSCharacterSet::letterCharacterSet},
      {"lowercaseLetter", NSCharacterSet::lowercaseLetterCharacterSet},
      {"uppercaseLetter", NSCharacterSet::uppercaseLetterCharacterSet},
      {"capitalizedLetter", NSCharacterSet::capitalizedLetterCharacterSet},
      {"alphanumeric", NSCharacterSet::alphanumericCharacterSet},
      {"nonBase", NSCharacterSet::nonBaseCharacterSet},
      {"decomposable", NSCharacterSet::decomposableCharacterSet},
      {"punctuation", NSCharacterSet::punctuationCharacterSet},
      {"symbol", NSCharacterSet::symbolCharacterSet},
      {"control", NSCharacterSet::controlCharacterSet},
      {"illegal", NSCharacterSet::illegalCharacterSet}};
  const auto found = kSets.find(name);
  if (found == kSets.end()) throw std::invalid_argument("unknown character set " + name);
  return found->second;
}

/// The members below U+3000 as runs of first and last code point.
Json runsOf(const NSCharacterSet& set) {
  Json runs = Json::array();
  for (char32_t character = 0; character < 0x3000; ++character) {
    if (!set.longCharacterIsMember(character)) continue;
    const auto code = static_cast<std::uint32_t>(character);
    if (!runs.empty() && runs.back()[1] == code - 1) {
      runs.back()[1] = code;
    } else {
      runs.push_back({code, code});
    }
  }
  return runs;
}

TEST(Texts, AgreeWithVectorsOfCharacterSets) {
  orlftest::runJsonVectors("texts_sets",
                           {{"members below U+3000", [](const Json& in, const Json& out) {
                               return disagreement(out, runsOf(*setNamed(textOf(in))()));
                             }}});
}

Json decodedText(const NSData& data) {
  NSUInteger encoding = NSUIntegerMax;
  const std::optional<std::string> text = orlfStringWithDataUsedEncoding(data, &encoding);
  return {{"encoding", encoding}, {"text", orlftest::jsonOrNull(text)}};
}

Json versionOf(const std::string& text) {
  const NSOperatingSystemVersion version = orlfOperatingSystemVersion(text);
  return {version.majorVersion, version.minorVersion, version.patchVersion};
}

std::string withInteger(const Json& in) {
  return orlfStringWithInteger(in.is_string() ? std::stoll(textOf(in)) : in.get<std::int64_t>());
}
std::string withUnsigned(const Json& in) {
  return orlfStringWithUnsignedInteger(in.is_string() ? std::stoull(textOf(in))
                                                      : in.get<std::uint64_t>());
}
std::string withLongLong(const Json& in) {
  return orlfStringWithLongLong(in.is_string() ? std::stoll(textOf(in)) : in.get<std::int64_t>());
}

template <class Function>
JsonCheck ofValue(Function function) {
  return
      [function](const Json& in, const Json& out) { return disagreement(out, Json(function(in))); };
}

TEST(Texts, AgreeWithVectorsOfStrings) {
  orlftest::runJsonVectors("texts_strings",
                           {{"orlfStringByBackslashEscapingCharactersInString:",
                             ofTwoTexts(orlfStringByBackslashEscapingCharactersInString)},
                            {"orlfOperatingSystemVersion", ofText(versionOf)},
                            {"orlfStringWithData:usedEncoding:error:",
                             ofText([](const auto& text) { return decodedText(dataOf(text)); })},
                            {"orlfStringWithInteger:", ofValue(withInteger)},
                            {"orlfStringWithUnsignedInteger:", ofValue(withUnsigned)},
                            {"orlfStringWithLongLong:", ofValue(withLongLong)}});
}

using PredicateMaker = decltype(&orlfStringEqualsPredicateWithKey);

JsonCheck evaluated(PredicateMaker make) {
  return [make](const Json& in, const Json& out) {
    const auto object = NSDictionary::dictionaryWithEntries({{"key", textOf(in["object"])}});
    const auto predicate = make("key", in["caseInsensitive"].get<bool>(),
                                in["diacriticInsensitive"].get<bool>(), textOf(in["value"]));
    return disagreement(out, Json(predicate->evaluateWithObject(object)));
  };
}

TEST(Texts, AgreeWithVectorsOfPredicates) {
  orlftest::runJsonVectors("texts_predicates",
                           {{"format", ofValue([](const Json& in) {
                               return internal::strings::stringPredicateFormat(
                                   textOf(in["operator"]), in["caseInsensitive"].get<bool>(),
                                   in["diacriticInsensitive"].get<bool>());
                             })},
                            {"equals", evaluated(orlfStringEqualsPredicateWithKey)},
                            {"matches", evaluated(orlfStringMatchPredicateWithKey)}});
}

TEST(Texts, AgreeWithVectorsOfAddresses) {
  orlftest::runJsonVectors("texts_email", {{"isEmailAddress", ofText(isEmailAddress)}});
}

TEST(Texts, AgreeWithVectorsOfTitles) {
  const auto locale = std::make_shared<NSLocale>("en_US");
  orlftest::runJsonVectors(
      "texts_titlecase",
      {{"orlfTitleCase", ofText([&](const auto& text) { return orlfTitleCase(text, locale); })}});
}

}  // namespace
}  // namespace ORLFoundation
