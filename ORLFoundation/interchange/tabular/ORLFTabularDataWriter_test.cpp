#include <ORLFoundation/interchange/tabular/ORLFTabularDataWriter.h>

#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <optional>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::textOrNil;

constexpr std::int64_t kComma = 0;
constexpr std::int64_t kTab = 1;

TEST(ORLFTabularDataWriter, AgreesWithVectorsOfValues) {
  orlftest::runJsonVectors(
      "interchange_tabular_value",
      {{"encodeValue", [](const Json& in, const Json& out) {
          const ORLFTabularDataWriter writer(in.at("delimiter").get<std::int64_t>());
          return disagreement(textOrNil(out), writer.encodeValue(textOrNil(in.at("value"))));
        }}});
}

TEST(ORLFTabularDataWriter, AgreesWithVectorsOfRows) {
  orlftest::runJsonVectors(
      "interchange_tabular_write",
      {{"tabular", [](const Json& in, const Json& out) {
          ORLFTabularDataWriter writer(in.at("delimiter").get<std::int64_t>());
          for (const Json& call : in.at("calls")) {
            if (call.at(0) == "row")
              writer.writeNewRow(call.at(1).get<std::uint64_t>());
            else if (call.at(0) == "value")
              writer.writeColumnValue(textOrNil(call.at(1)), call.at(2).get<std::uint64_t>());
            else
              throw std::runtime_error("an unknown call");
          }
          const auto text = disagreement(textOrNil(out.at("text")), writer.string());
          return text.empty() ? disagreement(out.at("hasPrecedingValue").get<bool>(),
                                             writer.hasPrecedingValue())
                              : text;
        }}});
}

TEST(ORLFTabularDataWriter, EncodesNilAsTheEmptyTextWithoutMarks) {
  EXPECT_EQ(ORLFTabularDataWriter(kComma).encodeValue(std::nullopt), "");
  EXPECT_EQ(ORLFTabularDataWriter(kComma).encodeValue(""), "");
}

TEST(ORLFTabularDataWriter, WrapsMarksAndCommasInTwoLayers) {
  const ORLFTabularDataWriter writer(kComma);
  EXPECT_EQ(writer.encodeValue("a\"b"), R"("a""b")");
  EXPECT_EQ(writer.encodeValue("a,b"), R"("a,b")");
  EXPECT_EQ(writer.encodeValue("a\",b"), R"(""a"",b"")");
  EXPECT_EQ(writer.encodeValue("a\t,b"), "\"\"a\t,b\"\"");
  EXPECT_EQ(writer.encodeValue("a\"\tb"), "\"a\"\"\tb\"");
}

TEST(ORLFTabularDataWriter, QuotesNoLineBreakAndWithTabsNoComma) {
  EXPECT_EQ(ORLFTabularDataWriter(kComma).encodeValue("a\nb"), "a\nb");
  EXPECT_EQ(ORLFTabularDataWriter(kTab).encodeValue("a,b"), "a,b");
  EXPECT_EQ(ORLFTabularDataWriter(kTab).encodeValue("a\tb"), "\"a\tb\"");
}

TEST(ORLFTabularDataWriter, TakesEveryTypeButZeroForTabs) {
  for (const std::int64_t type : {std::int64_t{1}, std::int64_t{2}, std::int64_t{-1},
                                  std::numeric_limits<std::int64_t>::min()}) {
    ORLFTabularDataWriter writer(type);
    writer.writeColumnValue("a", 1);
    writer.writeColumnValue("b", 1);
    EXPECT_EQ(writer.string(), "a\tb") << type;
    EXPECT_EQ(writer.delimiterType(), type);
  }
}

TEST(ORLFTabularDataWriter, FillsASpanWithEmptyQuotedFields) {
  ORLFTabularDataWriter writer(kComma);
  writer.writeColumnValue("x", 3);
  EXPECT_EQ(writer.string(), R"(x,"","")");
  ORLFTabularDataWriter tabs(kTab);
  tabs.writeColumnValue(std::nullopt, 2);
  EXPECT_EQ(tabs.string(), "\t\"\"");
}

TEST(ORLFTabularDataWriter, WritesNothingForASpanOfZero) {
  ORLFTabularDataWriter writer(kComma);
  writer.writeColumnValue("x", 0);
  EXPECT_EQ(writer.string(), std::nullopt);
  EXPECT_FALSE(writer.hasPrecedingValue());
  writer.writeColumnValue("x", 1);
  writer.writeColumnValue("y", 0);
  EXPECT_EQ(writer.string(), "x");
  EXPECT_TRUE(writer.hasPrecedingValue());
}

TEST(ORLFTabularDataWriter, BeginsNoRowForACountOfZero) {
  ORLFTabularDataWriter writer(kComma);
  writer.writeNewRow(0);
  EXPECT_EQ(writer.string(), std::nullopt);
  writer.writeColumnValue("x", 1);
  writer.writeNewRow(0);
  writer.writeColumnValue("y", 1);
  writer.writeNewRow(2);
  writer.writeColumnValue("z", 1);
  EXPECT_EQ(writer.string(), "x,y\n\nz");
}

TEST(ORLFTabularDataWriter, HeedsThePrecedingValueThatACallerSets) {
  ORLFTabularDataWriter writer(kComma);
  writer.setHasPrecedingValue(true);
  writer.writeColumnValue("x", 1);
  writer.setHasPrecedingValue(false);
  writer.writeColumnValue("y", 1);
  EXPECT_EQ(writer.string(), ",xy");
}

TEST(ORLFTabularDataWriter, GivesACopyOfItsText) {
  ORLFTabularDataWriter writer(kComma);
  writer.writeColumnValue("x", 1);
  const auto before = writer.string();
  writer.writeColumnValue("y", 1);
  EXPECT_EQ(before, "x");
}

}  // namespace
}  // namespace ORLFoundation
