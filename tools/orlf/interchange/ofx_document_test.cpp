// The command `ofx2xml` and the documents below it.
#include "interchange/ofx_document.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>

#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using namespace std::string_view_literals;
using orlftool::convertOfx;
using orlftool::OfxDocument;
using Notes = std::vector<std::string>;

constexpr const char* kDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n";
constexpr const char* kHeader =
    R"(<?OFX OFXHEADER="200" VERSION="200" SECURITY="NONE" OLDFILEUID="NONE" )"
    "NEWFILEUID=\"NONE\"?>\n";

struct OfxCase {
  const char* name;
  std::string_view bytes;
  std::string header;
  const char* body;
  Notes notes;
};
const OfxCase kCases[] = {
    {"Header",
     "OFXHEADER:100\r\nVERSION:102\r\nENCODING:USASCII\r\nCHARSET:1252\r\n\r\n<OFX><A>\x80\r\n</"
     "OFX>\r\n",
     kHeader,
     "<OFX><A>€</A></OFX>",
     {}},
    {"HeaderOnOneLine",
     "OFXHEADER:100DATA:OFXSGMLVERSION:102ENCODING:USASCIICHARSET:8859-1"
     "NEWFILEUID:ab-1<OFX><A>\xE9</OFX>",
     R"(<?OFX OFXHEADER="200" VERSION="200" SECURITY="NONE" OLDFILEUID="NONE" )"
     "NEWFILEUID=\"ab-1\"?>\n",
     "<OFX><A>é</A></OFX>",
     {}},
    {"HeaderWithBlanks",
     "OFXHEADER:100 ENCODING:UTF-8 CHARSET:NONE <OFX><A>é</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {}},
    {"UnicodeIsUTF8",
     "OFXHEADER:100\nENCODING:UNICODE\n<OFX><A>é</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {}},
    {"Declaration",
     "<?xml version=\"1.0\" encoding='ISO-8859-1'?>\n<?OFX OFXHEADER=\"200\" "
     R"(VERSION="211" SECURITY="TYPE1" OLDFILEUID="a" NEWFILEUID="b"?> )"
     "\n<OFX><A>\xE9</A></OFX>",
     R"(<?OFX OFXHEADER="200" VERSION="211" SECURITY="TYPE1" OLDFILEUID="a" )"
     "NEWFILEUID=\"b\"?>\n",
     "<OFX><A>é</A></OFX>",
     {}},
    {"DeclarationOfOtherXml",
     R"(<?xml version="1.0"?><note><A>x</note>)",
     "",
     "<note><A>x</A></note>",
     {"no header and no root of OFX"}},
    {"ValuesThatCouldEndTheHeader",
     "OFXHEADER:100\nNEWFILEUID:a\"?>b\n<OFX><A>1</OFX>",
     R"(<?OFX OFXHEADER="200" VERSION="200" SECURITY="NONE" OLDFILEUID="NONE" )"
     "NEWFILEUID=\"ab\"?>\n",
     "<OFX><A>1</A></OFX>",
     {}},
    {"NoHeader", "<OFX><A>1</OFX>", kHeader, "<OFX><A>1</A></OFX>", {"no header of OFX"}},
    {"NoHeaderWithUTF8",
     "<OFX><A>é</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {"the file does not tell its encoding: read as utf-8", "no header of OFX"}},
    {"NoHeaderWithWindowsBytes",
     "<OFX><A>\xE9</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {"the file does not tell its encoding: read as windows-1252", "no header of OFX"}},
    {"MarkedUTF8",
     "\xEF\xBB\xBFOFXHEADER:100\nCHARSET:1252\n<OFX><A>é</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {}},
    {"MarkedUTF16",
     "\xFF\xFE<\0"
     "A\0>\0x\0"sv,
     "",
     "<A>x</A>",
     {"no header and no root of OFX"}},
    {"UnmarkedUTF16", "\0<\0A\0>\0<\0/\0A\0>"sv, "", "<A></A>", {"no header and no root of OFX"}},
    {"UTF16InName",
     R"(<?xml version="1.0" encoding="UTF-16"?><OFX><A>1</A></OFX>)",
     kHeader,
     "<OFX><A>1</A></OFX>",
     {"the file says utf-16, its bytes do not: read as utf-8", "no header of OFX"}},
    {"BytesOutsideTheirEncoding",
     "OFXHEADER:100\nENCODING:UTF-8\n<OFX><A>\xE9</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {"the file says utf-8, its bytes do not: read as windows-1252"}},
    {"BytesOutsideWindows",
     "OFXHEADER:100\nENCODING:USASCII\nCHARSET:1252\n<OFX><A>\x81\xE9</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {"the file says windows-1252, its bytes do not: read as latin-1"}},
    {"UTF8UnderAnotherName",
     "OFXHEADER:100\nENCODING:USASCII\nCHARSET:1252\n<OFX><A>é</OFX>",
     kHeader,
     "<OFX><A>Ã©</A></OFX>",
     {"the file says windows-1252 and was read so; all its bytes are utf-8 too: --encoding utf-8 "
      "reads that"}},
    {"UnknownCharset",
     "OFXHEADER:100\nENCODING:USASCII\nCHARSET:437\n<OFX><A>\xE9</OFX>",
     kHeader,
     "<OFX><A>é</A></OFX>",
     {"the header's CHARSET is unknown: '437'",
      "the file does not tell its encoding: read as windows-1252"}},
    {"UnknownDeclaration",
     R"(<?xml version="1.0" encoding="KOI8-R"?><OFX><A>1</OFX>)",
     kHeader,
     "<OFX><A>1</A></OFX>",
     {"the declaration's encoding is unknown: 'KOI8-R'", "no header of OFX"}},
    {"UnknownTags",
     "OFXHEADER:100\n<OFX><FOO>1<INTU.BID>2</OFX>",
     kHeader,
     "<OFX><FOO>1</FOO><INTU.BID>2</INTU.BID></OFX>",
     {"tags of a vendor's own: INTU.BID"}},
    {"MissingEndTags",
     "OFXHEADER:100\n<OFX><A><B>1",
     kHeader,
     "<OFX></OFX><A></A><B>1</B>",
     {"more than one element is the root"}},
    {"OrphanAtTheEnd",
     "OFXHEADER:100\n<OFX><A>",
     kHeader,
     "<OFX></OFX><A>",
     {"<A> is never closed", "more than one element is the root"}},
    {"BareAmpersand",
     "OFXHEADER:100\n<OFX><A>AT&T &amp; x</OFX>",
     kHeader,
     "<OFX><A>AT&amp;T &amp; x</A></OFX>",
     {}},
};

TEST(OfxDocument, IsConvertedAndRemarkedOn) {
  for (const OfxCase& each : kCases) {
    const OfxDocument document = convertOfx(each.bytes, "a.ofx", {});
    EXPECT_EQ(document.xml, kDeclaration + each.header + each.body + "\n") << each.name;
    EXPECT_EQ(document.notes, each.notes) << each.name;
  }
}

TEST(OfxDocument, IsReadInAGivenEncoding) {
  const std::string_view bytes =
      "OFXHEADER:100\nENCODING:USASCII\nCHARSET:1252\n<OFX><A>\x8E</OFX>";
  const OfxDocument document = convertOfx(bytes, "a.ofx", {.encoding = NSMacOSRomanStringEncoding});
  EXPECT_EQ(document.xml, std::string(kDeclaration) + kHeader + "<OFX><A>é</A></OFX>\n");
  EXPECT_EQ(document.notes, Notes{});
  EXPECT_THROW((void)convertOfx(bytes, "a.ofx", {.encoding = NSUTF8StringEncoding}),
               orlftool::JobFailure);
}

TEST(OfxDocument, NeedsATag) {
  for (const std::string_view bytes : {""sv, "OFXHEADER:100\n"sv, "\0"sv, "\xFF\xFE"sv})
    EXPECT_THROW((void)convertOfx(bytes, "a.ofx", {}), orlftool::JobFailure);
}

TEST(OfxDocument, IsIndentedOnRequest) {
  EXPECT_EQ(
      convertOfx("OFXHEADER:100\n<OFX>\n<A>\n<B>1\n</A>\n</OFX>\n", "a.ofx", {.isIndented = true})
          .xml,
      std::string(kDeclaration) + kHeader + "<OFX>\n  <A>\n    <B>1</B>\n  </A>\n</OFX>\n");
}

TEST(OfxDocument, TakesAMillionNestedTags) {
  std::string text = "OFXHEADER:100\n";
  for (int i = 0; i < 1'000'000; ++i) text += "<A>\n";
  for (int i = 0; i < 1'000'000; ++i) text += "</A>\n";
  const OfxDocument document = convertOfx(text, "a.ofx", {});
  EXPECT_EQ(document.notes, Notes{});
  EXPECT_GT(document.xml.size(), 7'000'000U);
}

// Real statements, each beside its paths and texts as another reader of SGML gives them.

/// A text with one blank for each run of white space, and none around it.
std::string folded(const std::string& text) {
  std::istringstream words(text);
  std::string result;
  for (std::string word; words >> word;) result += (result.empty() ? "" : " ") + word;
  return result;
}

void appendLeaves(std::string& result, const xmlNode* node, const std::string& above) {
  const std::string path = above + "/" + reinterpret_cast<const char*>(node->name);
  std::string text;
  for (const xmlNode* child = node->children; child != nullptr; child = child->next)
    if (child->type == XML_TEXT_NODE) text += reinterpret_cast<const char*>(child->content);
  result += path + "\t" + folded(text) + "\n";
  for (const xmlNode* child = node->children; child != nullptr; child = child->next)
    if (child->type == XML_ELEMENT_NODE) appendLeaves(result, child, path);
}

/// "path TAB text" of each element; empty for what is not well-formed.
std::string leavesOf(const std::string& xml) {
  const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
      xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "a.xml", nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOCDATA | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
      &xmlFreeDoc);
  std::string result;
  if (document) appendLeaves(result, xmlDocGetRootElement(document.get()), "");
  return result;
}

std::string foldedLeaves(const std::string& text) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t tab = std::min(line.find('\t'), line.size());
    result += line.substr(0, tab) + "\t" + folded(line.substr(tab)) + "\n";
  }
  return result;
}

TEST(OfxDocument, HoldsThePathsAndTextsOfRealStatements) {
  const std::filesystem::path folder = std::string(ORLF_SOURCE_DIR) + "/tests/data/ofx";
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "expected")) {
    const std::string name = entry.path().filename().string();
    const std::string stem = name.substr(0, name.find(".leaves.tsv"));
    const std::string bytes = orlftest::contentOf(folder / (stem + ".ofx"));
    ASSERT_FALSE(bytes.empty()) << stem;
    const std::string expected = foldedLeaves(orlftest::contentOf(entry.path()));
    for (const bool isIndented : {false, true}) {
      const OfxDocument document = convertOfx(bytes, stem, {.isIndented = isIndented});
      EXPECT_EQ(leavesOf(document.xml), expected) << stem << " " << isIndented;
    }
    ++count;
  }
  EXPECT_EQ(count, 28U);
}

TEST(OfxDocument, IsWellFormedForEveryRealStatementUnlessItRemarksOnTags) {
  const std::filesystem::path folder = std::string(ORLF_SOURCE_DIR) + "/tests/data/ofx";
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".ofx") continue;
    const OfxDocument document = convertOfx(orlftest::contentOf(entry.path()), "a.ofx", {});
    EXPECT_NE(leavesOf(document.xml), "") << entry.path() << testing::PrintToString(document.notes);
    ++count;
  }
  EXPECT_EQ(count, 42U);
}

class OfxCommand : public orlftest::TemporaryFolderTest {};

TEST_F(OfxCommand, PrintsXmlAndNotes) {
  const std::string file = write("a.ofx", "<OFX><A>1<B>2</OFX></C>");
  const orlftest::ToolRun run = orlftest::runTool({"ofx2xml", file, "--pretty"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            std::string(kDeclaration) + kHeader + "<OFX>\n  <A>1</A>\n  <B>2</B>\n</OFX>\n</C>\n");
  EXPECT_EQ(run.err, "orlf ofx2xml: " + file + ": no header of OFX\norlf ofx2xml: " + file +
                         ": </C> closes nothing\n");
}

TEST_F(OfxCommand, TellsOnlyTheFirstOfManyRemarks) {
  std::string text = "OFXHEADER:100\n<OFX>";
  for (char c = 'A'; c <= 'Y'; ++c) text += std::string("</") + c + ">";
  const orlftest::ToolRun run = orlftest::runTool({"ofx2xml", write("a.ofx", text + "</OFX>")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 21);
  EXPECT_NE(run.err.find("and 5 more remarks of these kinds"), std::string::npos);
}

TEST_F(OfxCommand, FailsForWhatItCannotRead) {
  EXPECT_EQ(orlftest::runTool({"ofx2xml", path("missing")}).exitCode, 1);
  EXPECT_EQ(orlftest::runTool({"ofx2xml", write("a", "no tag")}).exitCode, 1);
  EXPECT_EQ(orlftest::runTool({"ofx2xml", write("a", "<A>"), "--encoding", "x"}).exitCode, 2);
}

}  // namespace
