
#include <ORLFoundation/web/agent/ORLFDictionaryQueryString.h>

#include <ORLFoundation/platform/object/NSSet.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSDictionary> entries(std::initializer_list<std::pair<id, id>> list) {
  return NSDictionary::dictionaryWithEntries(list);
}

struct ParseCase {
  const char* name;
  std::string_view query;
  std::shared_ptr<NSDictionary> answer;
};

TEST(ORLFDictionaryQueryString, ReadsQueries) {
  const ParseCase cases[] = {
      {"Empty", "", entries({})},
      {"NoSign", "b", entries({})},
      {"One", "a=1", entries({{"a", "1"}})},
      {"Repeated", "a=1&a=2&b", entries({{"a", NSSet::setWithObjects({"1", "2"})}})},
      {"Thrice", "a=1&a=2&a=3", entries({{"a", NSSet::setWithObjects({"1", "2", "3"})}})},
      {"Doubles", "a=1&a=1", entries({{"a", NSSet::setWithObjects({"1"})}})},
      {"FirstSign", "x=a=b", entries({{"x", "a=b"}})},
      {"EmptyParts", "&&a=&=b&", entries({{"a", ""}, {"", "b"}})},
      {"Escapes", "%61%3D=%26%C3%A9", entries({{"a=", "&é"}})},
      {"EqualKeysWhenResolved", "a=1&%61=2", entries({{"a", NSSet::setWithObjects({"1", "2"})}})},
      {"Plus", "a=b+c", entries({{"a", "b+c"}})},
      {"BrokenEscapes", "a=%zz&%=b&c=%FF&d=1", entries({{"d", "1"}})},
      {"BrokenBytes", "a=\xFF&b=1", entries({{"b", "1"}})},
  };
  for (const ParseCase& row : cases)
    EXPECT_TRUE(orlfDictionaryWithURLQueryString(row.query)->isEqual(row.answer.get()))
        << row.name << orlfDictionaryWithURLQueryString(row.query)->description();
}

struct MakeCase {
  const char* name;
  std::shared_ptr<NSDictionary> dictionary;
  const char *plain, *zero, *plus, *commas, *both;
};

TEST(ORLFDictionaryQueryString, MakesQueries) {
  const auto xy = NSArray::arrayWithObjects({"x", "y"});
  const MakeCase cases[] = {
      {"Nothing", entries({}), "", "", "", "", ""},
      {"Sorted", entries({{"b", "2"}, {"a", "1"}}), "a=1&b=2", "a=1&b=2", "a=1&b=2", "a=1&b=2",
       "a=1&b=2"},
      {"Number", entries({{"a", 1.5}, {"b", true}}), "", "a=1.5&b=1", "a=1.5&b=1", "a=1.5&b=1",
       "a=1.5&b=1"},
      {"Data", entries({{"a", NSData("x y")}}), "a=x%20y", "a=x%20y", "a=x%20y", "a=x%20y",
       "a=x%20y"},
      {"OtherData", entries({{"a", NSData("\xFF")}}), "", "", "", "", ""},
      {"Null", entries({{"a", NSNull()}, {"b", entries({})}}), "", "", "", "", ""},
      {"Array", entries({{"k", xy}}), "k=x&k=y", "k=x&k=y", "k=x&k=y", "k=x,y", "k=x,y"},
      {"Set", entries({{"k", NSSet::setWithObjects({"x", "y"})}}), "k=x&k=y", "k=x&k=y", "k=x&k=y",
       "k=x,y", "k=x,y"},
      {"EmptyArray", entries({{"k", std::make_shared<NSArray>()}}), "", "", "", "", ""},
      {"Signs", entries({{"a+,b", "1+2,3"}}), "a+,b=1+2,3", "a+,b=1+2,3", "a%2B,b=1%2B2,3",
       "a+%2Cb=1+2%2C3", "a%2B%2Cb=1%2B2%2C3"},
      {"SignsInMembers", entries({{"k", NSArray::arrayWithObjects({"a,b", "c+d"})}}), "k=a,b&k=c+d",
       "k=a,b&k=c+d", "k=a,b&k=c%2Bd", "k=a%2Cb,c+d", "k=a%2Cb,c%2Bd"},
      {"IdenticalWithTheFirst", entries({{"k", NSArray::arrayWithObjects({"a", "b", "a"})}}),
       "k=a&k=b&k=a", "k=a&k=b&k=a", "k=a&k=b&k=a", "k=a,ba", "k=a,ba"},
      {"MixedMembers", entries({{"k", NSArray::arrayWithObjects({"a", 1, NSNull(), NSData("d")})}}),
       "k=a&k=d", "k=a&k=1&k=d", "k=a&k=1&k=d", "k=a,1,,d", "k=a,1,,d"},
      {"Escapes", entries({{"a b", "c&d=e%"}}), "a%20b=c&d=e%25", "a%20b=c&d=e%25",
       "a%20b=c&d=e%25", "a%20b=c&d=e%25", "a%20b=c&d=e%25"},
      {"OtherKeys", entries({{1, "a"}, {"b", "c"}}), "b=c", "b=c", "b=c", "b=c", "b=c"},
  };
  for (const MakeCase& row : cases) {
    EXPECT_EQ(orlfURLQueryString(*row.dictionary), row.plain) << row.name;
    EXPECT_EQ(orlfURLQueryStringWithOptions(*row.dictionary, 0), row.zero) << row.name;
    EXPECT_EQ(orlfURLQueryStringWithOptions(*row.dictionary, 1), row.plus) << row.name;
    EXPECT_EQ(orlfURLQueryStringWithOptions(*row.dictionary, 2), row.commas) << row.name;
    EXPECT_EQ(orlfURLQueryStringWithOptions(*row.dictionary, 3), row.both) << row.name;
    EXPECT_EQ(orlfURLQueryStringWithOptions(*row.dictionary, ~NSUInteger{3}), row.zero) << row.name;
  }
}

TEST(ORLFDictionaryQueryString, SetsNoCommaBeforeTheFirstObjectItself) {
  const auto object = std::make_shared<NSArray>();
  const auto equal = std::make_shared<NSArray>();
  EXPECT_EQ(orlfURLQueryStringWithOptions(
                *entries({{"k", NSArray::arrayWithObjects({object, equal, object})}}), 2),
            "k=,");
}

TEST(ORLFDictionaryQueryString, AddsEntriesAndTakesThemAway) {
  const auto base = entries({{"a", 1}, {"b", 2}});
  EXPECT_TRUE(orlfDictionaryByAddingContentsOfDictionary(*base, entries({{"b", 3}, {"c", 4}}))
                  ->isEqual(entries({{"a", 1}, {"b", 3}, {"c", 4}}).get()));
  EXPECT_TRUE(orlfDictionaryByAddingContentsOfDictionary(*base, nullptr)->isEqual(base.get()));
  EXPECT_TRUE(
      orlfDictionaryByRemovingObjectsForKeys(*base, NSArray::arrayWithObjects({"a", "x", "a"}))
          ->isEqual(entries({{"b", 2}}).get()));
  EXPECT_TRUE(orlfDictionaryByRemovingObjectsForKeys(*base, nullptr)->isEqual(base.get()));
  EXPECT_EQ(base->count(), 2U);
}

TEST(ORLFDictionaryQueryString, ReadsLongQueriesInLinearTime) {
  std::string query;
  for (int i = 0; i < 50'000; ++i) query += "a=" + std::to_string(i) + "&";
  const double seconds = orlftest::processorSecondsOf([&] {
    EXPECT_EQ(orlfDictionaryWithURLQueryString(query)->objectForKey("a").as<NSSet>()->count(),
              50'000U);
  });
  EXPECT_LT(seconds, 2);
}

}  // namespace
}  // namespace ORLFoundation
