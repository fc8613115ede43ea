
#include <ORLFoundation/platform/predicate/NSPredicate.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/predicate/internal/PredicateNode.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <span>

namespace ORLFoundation {
namespace {

id payment() {
  return NSDictionary::dictionaryWithEntries(
      {{"payee", "Café Zoë"},
       {"amount", 12.5},
       {"count", 3},
       {"cleared", true},
       {"in", "reserved"},
       {"date", NSDate::dateWithTimeIntervalSinceReferenceDate(1000)},
       {"tags", NSArray::arrayWithObjects({"Food", "out"})},
       {"none", NSArray::arrayWithObjects({})},
       {"kinds", NSSet::setWithObjects({1, 2})},
       {"owner", NSDictionary::dictionaryWithEntries({{"name", "Ann"}})},
       {"parts",
        NSArray::arrayWithObjects({NSDictionary::dictionaryWithEntries({{"amount", 5}}),
                                   NSDictionary::dictionaryWithEntries({{"amount", 7.5}})})}});
}

struct PredicateCase {
  std::string_view format;
  bool holds;
};

void expectAll(std::span<const PredicateCase> rows) {
  const id object = payment();
  for (const PredicateCase& row : rows) {
    const auto predicate = NSPredicate::predicateWithFormat(row.format);
    EXPECT_EQ(predicate->evaluateWithObject(object), row.holds) << row.format;
    const auto again = NSPredicate::predicateWithFormat(predicate->predicateFormat());
    EXPECT_EQ(again->evaluateWithObject(object), row.holds) << predicate->predicateFormat();
    EXPECT_TRUE(again->isEqual(predicate.get())) << predicate->predicateFormat();
  }
}

const PredicateCase kComparisons[] = {
    {"amount == 12.5", true},
    {"amount = 12.5", true},
    {"amount != 12.5", false},
    {"amount <> 12", true},
    {"amount < 12.5", false},
    {"amount <= 12.5", true},
    {"amount =< 12.4", false},
    {"amount > 12", true},
    {"amount >= 12.5", true},
    {"amount => 13", false},
    {"12.5 == amount", true},
    {"amount > -1.5e3", true},
    {"amount > .5", true},
    {"amount BETWEEN {12, 13}", true},
    {"amount between {13, 14}", false},
    {"count IN {1, 2, 3}", true},
    {"count IN {}", false},
    {"cleared == YES", true},
    {"cleared == true", true},
    {"cleared == NO", false},
    {"cleared == 1", true},
    {"payee < 'D'", true},
    {"payee == amount", false},
    {"payee == \"Caf\u00E9 Zo\u00EB\"", true},
    {"payee == \"Cafe\u0301 Zo\u00EB\"", true},
    {"payee == 'cafe zoe'", false},
    {"payee ==[c] 'cafe zoe'", false},
    {"payee ==[cd] 'cafe zoe'", true},
    {"payee !=[cd] 'cafe zoe'", false},
    {"payee ==[n] \"Cafe\u0301 Zo\u00EB\"", false},
    {"payee ==[l] \"Caf\u00E9 Zo\u00EB\"", true},
    {"missing == nil", true},
    {"missing == NULL", true},
    {"missing != nil", false},
    {"missing != 'x'", true},
    {"payee != nil", true},
    {"missing < 5", false},
    {"missing >= 5", false},
    {"missing == missing", true},
    {"#in == 'reserved'", true},
    {"owner.name == 'Ann'", true},
    {"SELF.owner.name == 'Ann'", true},
    {"parts.@count == 2", true},
    {"parts.@sum.amount == 12.5", true},
    {"(amount) == (12.5)", true},
};

TEST(NSPredicate, Compares) { expectAll(kComparisons); }

const PredicateCase kTexts[] = {
    {"payee BEGINSWITH 'Caf'", true},
    {"payee BEGINSWITH 'Cafe'", false},
    {"payee BEGINSWITH[cd] 'CAFE'", true},
    {"payee BEGINSWITH ''", false},
    {"payee ENDSWITH \"Zo\u00EB\"", true},
    {"payee ENDSWITH[d] 'Zoe'", true},
    {"payee ENDSWITH 'Caf'", false},
    {"payee CONTAINS[cd] 'E Z'", true},
    {"payee CONTAINS 'E Z'", false},
    {"payee CONTAINS ''", false},
    {"'Caf' IN payee", true},
    {"'caf' IN[c] payee", true},
    {"payee LIKE 'Caf*'", true},
    {"payee LIKE 'Caf? Zo?'", true},
    {"payee LIKE 'Caf?'", false},
    {"payee LIKE[cd] '*E ?OE'", true},
    {"payee LIKE '*'", true},
    {"payee LIKE ''", false},
    {"payee LIKE '*C*f*Z*'", true},
    {"'a*b' LIKE 'a\\\\*b'", true},
    {"'axb' LIKE 'a\\\\*b'", false},
    {"payee MATCHES 'C.*'", true},
    {"payee MATCHES 'c.*'", false},
    {"payee MATCHES[c] 'c.*'", true},
    {"payee MATCHES[cd] 'cafe\\\\s\\\\w+'", true},
    {"payee MATCHES 'Caf'", false},
    {"'5' MATCHES[c] '\\\\D'", false},
    {"missing BEGINSWITH 'a'", false},
    {"missing MATCHES 'a'", false},
    {"missing CONTAINS 'a'", false},
    {"'a' IN missing", false},
    {"payee CONTAINS missing", false},
    {"payee MATCHES missing", false},
};

TEST(NSPredicate, ComparesTexts) { expectAll(kTexts); }

const PredicateCase kCollections[] = {
    {"tags CONTAINS 'Food'", true},
    {"tags CONTAINS 'food'", false},
    {"tags CONTAINS[c] 'food'", true},
    {"'out' IN tags", true},
    {"2 IN kinds", true},
    {"3 IN kinds", false},
    {"owner CONTAINS 'Ann'", true},
    {"ANY tags == 'out'", true},
    {"SOME tags BEGINSWITH[c] 'f'", true},
    {"ALL tags BEGINSWITH[c] 'f'", false},
    {"ALL tags != 'x'", true},
    {"NONE tags == 'x'", true},
    {"none tags == 'out'", false},
    {"ANY parts.amount > 7", true},
    {"ALL parts.amount > 7", false},
    {"ANY missing == 1", false},
    {"ALL missing == 1", true},
    {"ANY kinds IN {2, 5}", true},
};

TEST(NSPredicate, AsksCollections) { expectAll(kCollections); }

const PredicateCase kJoined[] = {
    {"TRUEPREDICATE", true},
    {"falsepredicate", false},
    {"NOT FALSEPREDICATE", true},
    {"!(TRUEPREDICATE)", false},
    {"!!TRUEPREDICATE", true},
    {"TRUEPREDICATE AND FALSEPREDICATE", false},
    {"TRUEPREDICATE && TRUEPREDICATE and TRUEPREDICATE", true},
    {"FALSEPREDICATE OR TRUEPREDICATE", true},
    {"FALSEPREDICATE || FALSEPREDICATE", false},
    {"TRUEPREDICATE OR FALSEPREDICATE AND FALSEPREDICATE", true},
    {"(TRUEPREDICATE OR FALSEPREDICATE) AND FALSEPREDICATE", false},
    {"NOT amount == 1 AND amount == 12.5", true},
    {"NOT (amount == 1 OR amount == 12.5)", false},
    {"((amount == 12.5))", true},
};

TEST(NSPredicate, JoinsConditions) { expectAll(kJoined); }

TEST(NSPredicate, TakesArguments) {
  const id object = payment();
  const auto holds = [&](const std::shared_ptr<NSPredicate>& predicate) {
    return predicate->evaluateWithObject(object);
  };
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat("%K == %@", "owner.name", "Ann")));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat("%K == %@", "in", "reserved")));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat("%K > %d AND count < %lu", "amount", 12, 4U)));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat("amount == %f", 12.5)));
  EXPECT_TRUE(
      holds(NSPredicate::predicateWithFormat("count IN %@", NSArray::arrayWithObjects({3}))));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat("count IN {%d, %lld}", 3, 4)));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat("missing == %@", nullptr)));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat(
      "date == %@", NSDate::dateWithTimeIntervalSinceReferenceDate(1000))));
  EXPECT_TRUE(holds(NSPredicate::predicateWithFormat(
      "date < %@", NSDate::dateWithTimeIntervalSinceReferenceDate(1001))));
  EXPECT_FALSE(holds(NSPredicate::predicateWithFormat("payee == '%@'", "x")));
  EXPECT_TRUE(NSPredicate::predicateWithFormat("SELF == %@", 5)->evaluateWithObject(5));
  EXPECT_TRUE(NSPredicate::predicateWithFormat("self CONTAINS 'b'")->evaluateWithObject("abc"));
  EXPECT_TRUE(NSPredicate::predicateWithFormat("name == nil")->evaluateWithObject(nullptr));
}

TEST(NSPredicate, TakesAnArgumentAsItIs) {
  const id object = NSDictionary::dictionaryWithEntries({{"a", "' OR TRUEPREDICATE OR '"}});
  EXPECT_FALSE(
      NSPredicate::predicateWithFormat("a == %@", "x' OR '1' == '1")->evaluateWithObject(object));
  EXPECT_TRUE(NSPredicate::predicateWithFormat("a == %@", "' OR TRUEPREDICATE OR '")
                  ->evaluateWithObject(object));
}

TEST(NSPredicate, IsOfOneValue) {
  EXPECT_TRUE(NSPredicate::predicateWithValue(true)->evaluateWithObject(nullptr));
  EXPECT_FALSE(NSPredicate::predicateWithValue(false)->evaluateWithObject(1));
  EXPECT_EQ(NSPredicate::predicateWithValue(true)->predicateFormat(), "TRUEPREDICATE");
}

struct FormatCase {
  std::string_view format, text;
};
const FormatCase kFormats[] = {
    {"a=1", "a == 1"},
    {"a<>1", "a != 1"},
    {"a =< -1.5", "a <= -1.5"},
    {"name beginswith[cd] 'x'", "name BEGINSWITH[cd] \"x\""},
    {"a == 'say \"hi\" \\\\ \\n'", "a == \"say \\\"hi\\\" \\\\ \\n\""},
    {"a == nil and b == NULL", "a == nil AND b == nil"},
    {"a == YES", "a == 1"},
    {"a in {1,'b',{nil}}", "a IN {1, \"b\", {nil}}"},
    {"a==1 or b==2 and not c==3", "a == 1 OR (b == 2 AND NOT c == 3)"},
    {"not (a==1 or b==2)", "NOT (a == 1 OR b == 2)"},
    {"some a.b == 1", "ANY a.b == 1"},
    {"#any == 1", "#any == 1"},
    {"SELF == 1", "SELF == 1"},
    {"((truepredicate))", "TRUEPREDICATE"},
};

TEST(NSPredicate, TellsItsFormat) {
  for (const FormatCase& row : kFormats)
    EXPECT_EQ(NSPredicate::predicateWithFormat(row.format)->predicateFormat(), row.text);
  EXPECT_EQ(NSPredicate::predicateWithFormat("%K == %@", "any",
                                             NSDate::dateWithTimeIntervalSinceReferenceDate(1.5))
                ->predicateFormat(),
            "#any == CAST(1.500000, \"NSDate\")");
  EXPECT_EQ(NSPredicate::predicateWithFormat("a IN %@", NSArray::arrayWithObjects({1, "b"}))
                ->description(),
            "a IN {1, \"b\"}");
}

TEST(NSPredicate, EqualsByItsText) {
  const auto left = NSPredicate::predicateWithFormat("a = %d", 1);
  const auto right = NSPredicate::predicateWithFormat("a==1");
  EXPECT_TRUE(left->isEqual(right.get()));
  EXPECT_EQ(left->hash(), right->hash());
  EXPECT_FALSE(left->isEqual(NSPredicate::predicateWithValue(true).get()));
  EXPECT_FALSE(left->isEqual(nullptr));
  EXPECT_EQ(left->copy(), left);
}

std::string reasonFor(std::string_view format) {
  try {
    static_cast<void>(NSPredicate::predicateWithFormat(format));
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    return exception.reason();
  }
  return "";
}

TEST(NSPredicate, RaisesForAWrongFormat) {
  for (const std::string_view format : {"",
                                        " ",
                                        "a",
                                        "a ==",
                                        "== 1",
                                        "a == 1 b",
                                        "a == 1 AND",
                                        "AND a == 1",
                                        "(a == 1",
                                        "a == 1)",
                                        "a === 1",
                                        "a == 'x",
                                        "a == \"x\\",
                                        "a == %",
                                        "a == %q",
                                        "a == %@",
                                        "%K == 1",
                                        "a == $x",
                                        "a ==[x] 'b'",
                                        "a ==[c 'b'",
                                        "a ==[] 'b'",
                                        "a[c] == 'b'",
                                        "a IN {1, 2",
                                        "a IN {1,}",
                                        "a RESEMBLES 'b'",
                                        "NOT a",
                                        "(a) AND (b)",
                                        "a == 1.2.3",
                                        "a == 1x",
                                        "a == 1e",
                                        "a == -'b'",
                                        "a == --1",
                                        "ANY ANY a == 1",
                                        "a == ALL",
                                        "a.b. == 1",
                                        "# == 1",
                                        "a == 1 ; b",
                                        "a == (1 == 1)",
                                        "a == b == c",
                                        "a == sum({1})",
                                        "\xFF\xFF",
                                        "TRUEPREDICATE == 1",
                                        "a==1AND b==2"})
    EXPECT_EQ(reasonFor(format),
              "Unable to parse the format string \"" + std::string(format) + "\"");
}

TEST(NSPredicate, RaisesForWrongArguments) {
  EXPECT_THROW(static_cast<void>(NSPredicate::predicateWithFormat("%K == 1", 5)), NSException);
  EXPECT_THROW(static_cast<void>(NSPredicate::predicateWithFormat("%K == 1", nullptr)),
               NSException);
  EXPECT_THROW(static_cast<void>(NSPredicate::predicateWithFormat("%K == %@", "a")), NSException);
  EXPECT_NO_THROW(static_cast<void>(NSPredicate::predicateWithFormat("a == 1", "left over")));
}

TEST(NSPredicate, RaisesForValuesThatAComparisonCannotTake) {
  const id object = payment();
  for (const std::string_view format :
       {"payee < 5", "amount < 'x'", "date > 5", "tags > 1", "amount BEGINSWITH 'x'",
        "amount MATCHES '1'", "payee MATCHES 5", "amount LIKE '1'", "amount CONTAINS 1",
        "payee CONTAINS 1", "5 IN amount", "amount BETWEEN 5", "amount BETWEEN {5}",
        "ANY payee == 'x'", "payee MATCHES '('", "payee MATCHES '[z-a]'", "amount.name == 1"}) {
    const auto predicate = NSPredicate::predicateWithFormat(format);
    EXPECT_THROW(static_cast<void>(predicate->evaluateWithObject(object)), NSException) << format;
  }
}

TEST(NSPredicate, EndsExpressionsThatTakeTooLong) {
  const auto predicate = NSPredicate::predicateWithFormat("SELF MATCHES '(a+)+b'");
  EXPECT_THROW(static_cast<void>(predicate->evaluateWithObject(std::string(60, 'a'))), NSException);
  const auto deep = NSPredicate::predicateWithFormat("SELF MATCHES '(a|b)*c'");
  EXPECT_THROW(static_cast<void>(deep->evaluateWithObject(std::string(5000000, 'a'))), NSException);
}

TEST(NSPredicate, IsOfBoundedDepth) {
  const auto nested = [](std::string_view open, std::string_view close, int depth) {
    std::string format;
    for (int i = 0; i < depth; ++i) format += open;
    format += "a == 1";
    for (int i = 0; i < depth; ++i) format += close;
    return format;
  };
  EXPECT_EQ(reasonFor(nested("(", ")", 90)), "");
  EXPECT_NE(reasonFor(nested("(", ")", 100)), "");
  EXPECT_NE(reasonFor(nested("(", ")", 1000000)), "");
  EXPECT_EQ(reasonFor(nested("NOT ", "", 90)), "");
  EXPECT_NE(reasonFor(nested("!", "", 1000000)), "");
  EXPECT_NE(reasonFor(std::string("a IN ").append(1000000, '{')), "");
  std::string path = "a";
  for (int i = 0; i < 1000; ++i) path += ".a";
  EXPECT_NE(reasonFor(path + " == 1"), "");
}

TEST(NSPredicate, JoinsAnyNumberOfConditions) {
  std::string format = "FALSEPREDICATE";
  for (int i = 0; i < 100000; ++i) format += " OR FALSEPREDICATE";
  EXPECT_FALSE(NSPredicate::predicateWithFormat(format)->evaluateWithObject(nullptr));
  EXPECT_TRUE(
      NSPredicate::predicateWithFormat(format + " OR TRUEPREDICATE")->evaluateWithObject(nullptr));
}

TEST(NSPredicate, CopiesOneOnTheStackToAnEqualOne) {
  NSPredicate predicate(std::make_shared<internal::predicate::ConstantPredicate>(true));
  orlftest::expectEqualCopyOfUnowned(predicate);
}

}  // namespace
}  // namespace ORLFoundation
