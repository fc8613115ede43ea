#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/xml/NSXMLParser_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <fstream>
#include <sstream>
#include <string>

namespace ORLFoundation {
namespace {

std::filesystem::path documents() { return orlftest::testDataFolder() / "xml"; }

TEST(NSXMLParserVerdicts, AgreeOnTheDocumentsOfAnotherParsersTests) {
  std::ifstream list(documents() / "verdicts.tsv");
  ASSERT_TRUE(list);
  std::size_t rows = 0;
  for (std::string line; std::getline(list, line); ++rows) {
    std::istringstream fields(line);
    std::string file;
    std::string wellFormed;
    std::string verdict;
    ASSERT_TRUE(fields >> file >> wellFormed >> verdict) << line;
    NSXMLParser parser(NSURL::fileURLWithPath((documents() / "libxml2" / file).string()));
    const bool isTaken = parser.parse();
    EXPECT_EQ(isTaken ? "ok" : "refused", verdict)
        << file << (isTaken ? "" : ": " + parser.parserError()->localizedDescription());
  }
  EXPECT_EQ(rows, 76U);
}

TEST(NSXMLParserVerdicts, AgreeOnFuzzedDocuments) {
  std::ifstream list(documents() / "fuzzed.jsonl");
  ASSERT_TRUE(list);
  std::size_t rows = 0;
  for (std::string line; std::getline(list, line); ++rows) {
    const auto row = orlftest::Json::parse(line);
    const std::string bytes =
        internal::base::bytesOfLooseBase64Text(row.at("base64").get<std::string>());
    NSXMLParser parser(NSData{std::string_view(bytes)});
    EXPECT_EQ(parser.parse() ? "wf" : "not-wf", row.at("verdict").get<std::string>())
        << row.at("name") << ", line " << rows + 1;
  }
  EXPECT_EQ(rows, 398U);
}

}  // namespace
}  // namespace ORLFoundation
