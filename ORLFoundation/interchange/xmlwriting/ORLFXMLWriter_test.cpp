#include <ORLFoundation/interchange/xmlwriting/ORLFXMLWriter.h>

#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <string>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;

struct Written {
  std::shared_ptr<NSMutableData> buffer = std::make_shared<NSMutableData>();
  ORLFXMLWriter writer{buffer};

  explicit Written(NSUInteger encoding = NSUTF8StringEncoding, bool isPretty = false) {
    writer.setEncoding(encoding);
    writer.setPrettyPrinted(isPretty);
  }
  [[nodiscard]] std::string text() const { return std::string(buffer->text()); }
};

bool call(ORLFXMLWriter& writer, const Json& words) {
  const auto text = [&words](std::size_t i) { return words.at(i).get<std::string>(); };
  if (words.at(0) == "start") return writer.writeStartElementName(text(1));
  if (words.at(0) == "attribute") return writer.writeAttribue(text(1), text(2));
  if (words.at(0) == "characters") return writer.writeCharacters(text(1));
  if (words.at(0) == "end") return writer.writeEndElementForced(words.at(1).get<bool>());
  throw std::runtime_error("an unknown call");
}

TEST(ORLFXMLWriter, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "interchange_xml_writer",
      {{"xml", [](const Json& in, const Json& out) {
          const Written written(in.at("encoding").get<NSUInteger>(), in.at("prettyPrinted"));
          ORLFXMLWriter writer(written.buffer);
          writer.setEncoding(in.at("encoding").get<NSUInteger>());
          writer.setPrettyPrinted(in.at("prettyPrinted"));
          Json results = Json::array();
          for (const Json& words : in.at("calls")) results.push_back(call(writer, words));
          const auto text = stringWithData(written.buffer->data(), writer.encoding());
          const Json got{{"results", results},
                         {"text", text ? Json(*text) : Json(nullptr)},
                         {"openElements", writer.openElements()},
                         {"openCDataElementsCount", writer.openCDataElementsCount()},
                         {"startElementInProgress", writer.startElementInProgress()}};
          return disagreement(out, got);
        }}});
}

TEST(ORLFXMLWriter, ClosesAnEmptyElementInItsStartTagUnlessForced) {
  Written written;
  written.writer.writeStartElementName("a");
  written.writer.writeAttribue("x", "1&2");
  EXPECT_TRUE(written.writer.writeEndElementForced(false));
  written.writer.writeStartElementName("a");
  written.writer.writeAttribue("x", "1&2");
  EXPECT_TRUE(written.writer.writeEndElementForced(true));
  EXPECT_EQ(written.text(), R"(<a x="1&amp;2"/><a x="1&amp;2"></a>)");
}

TEST(ORLFXMLWriter, IndentsElementsAndKeepsTextOnOneLine) {
  Written written(NSUTF8StringEncoding, true);
  ORLFXMLWriter& writer = written.writer;
  writer.writeStartElementName("a");
  writer.writeStartElementName("b");
  writer.writeEndElementForced(false);
  writer.writeStartElementName("c");
  writer.writeCharacters("text");
  writer.writeEndElementForced(false);
  writer.writeEndElementForced(false);
  EXPECT_EQ(written.text(), "<a>\n  <b/>\n  <c>text</c>\n</a>");
}

TEST(ORLFXMLWriter, StaysWithoutIndentationAfterTwoWritesOfText) {
  Written written(NSUTF8StringEncoding, true);
  ORLFXMLWriter& writer = written.writer;
  writer.writeStartElementName("a");
  writer.writeStartElementName("b");
  writer.writeCharacters("one");
  writer.writeCharacters("two");
  writer.writeEndElementForced(false);
  EXPECT_EQ(writer.openCDataElementsCount(), 1U);
  writer.writeEndElementForced(false);
  EXPECT_EQ(written.text(), "<a>\n  <b>onetwo</b></a>");
  EXPECT_EQ(writer.openCDataElementsCount(), 0U);
}

TEST(ORLFXMLWriter, EndsNothingWithSuccess) {
  Written written;
  written.writer.setOpenCDataElementsCount(2);
  EXPECT_TRUE(written.writer.writeEndElementForced(false));
  EXPECT_TRUE(written.writer.writeEndElementForced(true));
  EXPECT_EQ(written.text(), "");
  EXPECT_EQ(written.writer.openCDataElementsCount(), 0U);
}

TEST(ORLFXMLWriter, RefusesAnAttributeOutsideAStartTag) {
  Written written;
  EXPECT_FALSE(written.writer.writeAttribue("x", "1"));
  written.writer.writeStartElementName("a");
  written.writer.writeCharacters("t");
  EXPECT_FALSE(written.writer.writeAttribue("x", "1"));
  EXPECT_EQ(written.text(), "<a>t");
}

TEST(ORLFXMLWriter, LeavesNamesAsTheyStandAndDropsControlsOfText) {
  Written written;
  written.writer.writeStartElementName("a<b");
  written.writer.writeAttribue("x&", "\t<\n");
  written.writer.writeCharacters("1\t2\n3");
  EXPECT_EQ(written.text(), "<a<b x&=\"&lt;\">123");
}

TEST(ORLFXMLWriter, CountsAnEmptyTextToo) {
  Written written;
  written.writer.writeStartElementName("a");
  EXPECT_TRUE(written.writer.writeCharacters(""));
  EXPECT_EQ(written.writer.openCDataElementsCount(), 1U);
  EXPECT_EQ(written.text(), "<a>");
}

TEST(ORLFXMLWriter, FailsAtACharacterOutsideTheEncodingWithoutAnError) {
  Written written(NSASCIIStringEncoding);
  std::shared_ptr<const NSError> error;
  EXPECT_TRUE(written.writer.writeStartElementName("a", &error));
  EXPECT_FALSE(written.writer.writeCharacters("x€", &error));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(written.writer.openCDataElementsCount(), 0U);
  EXPECT_FALSE(written.writer.startElementInProgress());
  EXPECT_FALSE(written.writer.writeStartElementName("é", &error));
  EXPECT_EQ(written.writer.openElements(), std::vector<std::string>{"a"});
}

TEST(ORLFXMLWriter, KeepsWhatStandsBeforeACharacterThatItsEncodingLacks) {
  for (const std::size_t length : {2047U, 2048U, 2049U, 4095U, 4096U, 4097U}) {
    for (const NSUInteger encoding : {NSASCIIStringEncoding, NSWindowsCP1252StringEncoding,
                                      NSMacOSRomanStringEncoding, NSISOLatin1StringEncoding}) {
      Written written(encoding);
      const std::string start(length, 'a');
      EXPECT_FALSE(written.writer.appendString(start + "日b", false)) << length;
      EXPECT_EQ(written.text(), start) << length;
    }
  }
}

TEST(ORLFXMLWriter, CutsNoCharacterAtAnEdgeOfItsPieces) {
  for (std::size_t length = 2044; length <= 2049; ++length) {
    Written written;
    const std::string text = std::string(length, 'a') + "é日😀" + std::string(3000, 'b');
    EXPECT_TRUE(written.writer.appendString(text, false));
    EXPECT_EQ(written.text(), text) << length;
  }
}

TEST(ORLFXMLWriter, WritesAByteOrderMarkIntoAnEmptyBufferOnly) {
  Written written(NSUTF16StringEncoding);
  EXPECT_TRUE(written.writer.appendString("", false));
  EXPECT_EQ(written.buffer->length(), 0U);
  EXPECT_TRUE(written.writer.appendString("a", false));
  EXPECT_TRUE(written.writer.appendString("b", false));
  EXPECT_EQ(written.buffer->length(), 6U);
  EXPECT_EQ(stringWithData(written.buffer->data(), NSUTF16StringEncoding), "ab");
}

TEST(ORLFXMLWriter, WritesLossyTextWhereAsked) {
  Written written(NSASCIIStringEncoding);
  EXPECT_TRUE(written.writer.appendString("é日", true));
  EXPECT_EQ(written.text(), "e?");
}

TEST(ORLFXMLWriter, LosesBytesWithoutABuffer) {
  ORLFXMLWriter writer(nullptr);
  EXPECT_TRUE(writer.writeStartElementName("a"));
  EXPECT_TRUE(writer.writeEndElementForced(false));
}

TEST(ORLFXMLWriter, AppendsBytesAsTheyAre) {
  Written written;
  const std::uint8_t bytes[] = {0xFF, 0x00};
  EXPECT_TRUE(written.writer.appendBytes(bytes));
  EXPECT_EQ(written.text(), std::string("\xFF\0", 2));
}

}  // namespace
}  // namespace ORLFoundation
