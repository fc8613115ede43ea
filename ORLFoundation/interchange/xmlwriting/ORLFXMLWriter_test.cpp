#include <ORLFoundation/interchange/xmlwriting/ORLFXMLWriter.h>

#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

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
                         {"text", orlftest::jsonOrNull(text)},
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

// Conversion goes in pieces of 2,048 bytes: characters that the encoding lacks stand before, at and
// behind each edge.
TEST(ORLFXMLWriter, KeepsWhatStandsBeforeACharacterThatItsEncodingLacks) {
  for (const std::size_t edge : {2048U, 4096U, 6144U}) {
    for (std::size_t length = edge - 2; length <= edge + 2; ++length) {
      for (const NSUInteger encoding : {NSASCIIStringEncoding, NSWindowsCP1252StringEncoding,
                                        NSMacOSRomanStringEncoding, NSISOLatin1StringEncoding}) {
        Written written(encoding);
        written.writer.appendString("<", false);
        const std::string start(length, 'a');
        EXPECT_FALSE(written.writer.appendString(start + "日b", false)) << length;
        EXPECT_EQ(written.text(), "<" + start) << length;
        EXPECT_TRUE(written.writer.appendString("c", false));
        EXPECT_EQ(written.text(), "<" + start + "c") << length;
      }
    }
  }
}

TEST(ORLFXMLWriter, KeepsCharactersOfOneByteBeforeOneThatTheirEncodingLacks) {
  for (std::size_t length = 2046; length <= 2050; ++length) {
    Written written(NSISOLatin1StringEncoding);
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text += "é";
    EXPECT_FALSE(written.writer.appendString(text + "€é", false));
    EXPECT_EQ(written.text(), std::string(length, '\xE9')) << length;
  }
}

TEST(ORLFXMLWriter, CutsNoCharacterAtAnEdgeOfItsPieces) {
  for (const std::size_t edge : {2048U, 4096U}) {
    for (std::size_t length = edge - 12; length <= edge + 2; ++length) {
      Written written;
      const std::string text = std::string(length, 'a') + "é日😀" + std::string(3000, 'b');
      EXPECT_TRUE(written.writer.appendString(text, false));
      EXPECT_EQ(written.text(), text) << length;
      for (const NSUInteger encoding : {NSUTF16StringEncoding, NSUTF16BigEndianStringEncoding,
                                        NSUTF16LittleEndianStringEncoding}) {
        Written wide(encoding);
        const std::string half = text.substr(edge / 2);
        EXPECT_TRUE(wide.writer.appendString(half, false));
        EXPECT_TRUE(wide.writer.appendString("é", false));
        EXPECT_EQ(stringWithData(wide.buffer->data(), encoding), half + "é") << length;
      }
    }
  }
}

TEST(ORLFXMLWriter, KeepsLookAlikesTogetherAtAnEdgeOfItsPieces) {
  for (std::size_t length = 2044; length <= 2050; ++length) {
    Written written(NSASCIIStringEncoding);
    EXPECT_TRUE(written.writer.appendString(std::string(length, 'a') + "ﬃ…日b", true));
    EXPECT_EQ(written.text(), std::string(length, 'a') + "ffi...?b") << length;
  }
}

TEST(ORLFXMLWriter, WritesNothingInAnUnknownEncoding) {
  Written written(9999);
  std::shared_ptr<const NSError> error;
  EXPECT_TRUE(written.writer.appendString("", false, &error));
  EXPECT_FALSE(written.writer.writeStartElementName("a", &error));
  EXPECT_FALSE(written.writer.startElementInProgress());
  EXPECT_TRUE(written.writer.openElements().empty());
  written.writer.setStartElementInProgress(true);
  EXPECT_FALSE(written.writer.writeAttribue("a", "b", &error));
  EXPECT_FALSE(written.writer.closeStartElementIfNeeded(&error));
  EXPECT_FALSE(written.writer.startElementInProgress());
  EXPECT_FALSE(written.writer.writeCharacters("a", &error));
  EXPECT_EQ(written.writer.openCDataElementsCount(), 0U);
  written.writer.setPrettyPrinted(true);
  EXPECT_FALSE(written.writer.writePrettySpacingIfNeeded(&error));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(written.text(), "");
}

// An end tag that cannot be written ends the call before the count is lowered; "/>" does not.
TEST(ORLFXMLWriter, LowersTheCountOnlyBehindAnEndTagThatWasWritten) {
  Written written(9999);
  ORLFXMLWriter& writer = written.writer;
  writer.setOpenElements({"a", "b", "c"});
  writer.setOpenCDataElementsCount(3);
  EXPECT_FALSE(writer.writeEndElementForced(false));
  EXPECT_EQ(writer.openCDataElementsCount(), 3U);
  EXPECT_EQ(writer.openElements(), (std::vector<std::string>{"a", "b"}));
  writer.setStartElementInProgress(true);
  EXPECT_FALSE(writer.writeEndElementForced(true));
  EXPECT_EQ(writer.openElements(), (std::vector<std::string>{"a", "b"}));
  writer.setStartElementInProgress(true);
  EXPECT_FALSE(writer.writeEndElementForced(false));
  EXPECT_FALSE(writer.startElementInProgress());
  EXPECT_EQ(writer.openCDataElementsCount(), 2U);
  EXPECT_EQ(writer.openElements(), std::vector<std::string>{"a"});
}

TEST(ORLFXMLWriter, WritesAByteOrderMarkIntoAnEmptyBufferOnly) {
  Written written(NSUTF16StringEncoding);
  EXPECT_TRUE(written.writer.appendString("", false));
  EXPECT_EQ(written.buffer->length(), 0U);
  EXPECT_TRUE(written.writer.appendString("a", false));
  EXPECT_TRUE(written.writer.appendString("b", false));
  EXPECT_EQ(written.buffer->length(), 6U);
  EXPECT_EQ(stringWithData(written.buffer->data(), NSUTF16StringEncoding), "ab");
  Written begun(NSUTF16StringEncoding);
  begun.buffer->setLength(2);
  EXPECT_TRUE(begun.writer.appendString("a", false));
  EXPECT_EQ(begun.buffer->length(), 4U);
  Written named(NSUTF16LittleEndianStringEncoding);
  EXPECT_TRUE(named.writer.appendString("a", false));
  EXPECT_EQ(named.text(), std::string("a\0", 2));
  Written plain;
  EXPECT_TRUE(plain.writer.appendString("a", false));
  EXPECT_EQ(plain.text(), "a");
}

TEST(ORLFXMLWriter, WritesLossyTextWhereAsked) {
  Written written(NSASCIIStringEncoding);
  EXPECT_TRUE(written.writer.appendString("é日", true));
  EXPECT_EQ(written.text(), "e?");
}

/// The writer step by step: one append for each piece.
struct PlainWriter {
  Written written;
  std::vector<std::string> open;
  NSUInteger texts = 0;
  bool isInProgress = false;

  bool append(std::string_view text) { return written.writer.appendString(text, false); }
  bool appendAll(const std::vector<std::string>& pieces) {
    return std::all_of(pieces.begin(), pieces.end(),
                       [this](const auto& each) { return append(each); });
  }
  bool close() { return !std::exchange(isInProgress, false) || append(">"); }
  bool indent() {
    if (!written.writer.prettyPrinted() || texts != 0) return true;
    if (!written.writer.appendString("\n", true)) return false;
    const auto indentOnce = [this](const auto&) { return written.writer.appendString("  ", true); };
    return std::all_of(open.begin(), open.end(), indentOnce);
  }
  bool start(const std::string& name) {
    if (!close() || (!open.empty() && !indent()) || !appendAll({"<", name})) return false;
    isInProgress = true;
    open.push_back(name);
    return true;
  }
  bool attribute(const std::string& name, const std::string& value) {
    const std::string escaped = orlfStringByEscapingStandardXMLEntities(value);
    return isInProgress && appendAll({" ", name, "=", "\"", escaped, "\""});
  }
  bool characters(const std::string& text) {
    if (!close() || !append(orlfStringByEscapingStandardXMLEntities(text))) return false;
    ++texts;
    return true;
  }
  bool end(bool isForced) {
    if (isForced && !close()) return false;
    bool result = true;
    if (!open.empty()) {
      const std::string name = open.back();
      open.pop_back();
      if (std::exchange(isInProgress, false))
        result = append("/>");
      else if (!indent() || !appendAll({"</", name, ">"}))
        return false;
    }
    if (texts != 0) --texts;
    return result;
  }
};

TEST(ORLFXMLWriter, AgreesWithTheStepsOnRandomCalls) {
  std::mt19937 random(7);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  const std::vector<std::string> words{"",    "a",        "name", "x&<\"", "é",
                                       "日€", "\xE2\x82", "\n",   "\xFF",  std::string(2050, 'b')};
  for (int round = 0; round < 3000; ++round) {
    const NSUInteger encoding =
        std::vector<NSUInteger>{NSUTF8StringEncoding, NSASCIIStringEncoding, NSUTF16StringEncoding,
                                NSISOLatin1StringEncoding, 9999}[below(5)];
    const bool isPretty = below(2) == 0;
    Written written(encoding, isPretty);
    ORLFXMLWriter& writer = written.writer;
    PlainWriter plain{.written = Written(encoding, isPretty), .open = {}};
    for (std::size_t calls = below(30); calls > 0; --calls) {
      const std::string& first = words[below(words.size())];
      const std::string& second = words[below(words.size())];
      const std::size_t kind = below(4);
      const bool isForced = below(2) == 0;
      const bool done = kind == 0   ? writer.writeStartElementName(first)
                        : kind == 1 ? writer.writeAttribue(first, second)
                        : kind == 2 ? writer.writeCharacters(first)
                                    : writer.writeEndElementForced(isForced);
      const bool plainlyDone = kind == 0   ? plain.start(first)
                               : kind == 1 ? plain.attribute(first, second)
                               : kind == 2 ? plain.characters(first)
                                           : plain.end(isForced);
      ASSERT_EQ(done, plainlyDone) << round;
      ASSERT_EQ(written.text(), plain.written.text()) << round;
      ASSERT_EQ(writer.openElements(), plain.open) << round;
      ASSERT_EQ(writer.openCDataElementsCount(), plain.texts) << round;
      ASSERT_EQ(writer.startElementInProgress(), plain.isInProgress) << round;
    }
  }
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
