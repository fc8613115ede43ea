#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <ORLFoundation/platform/base/UTF16.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParser_testing.h>
#include <ORLFoundation/platform/xml/internal/PushParser.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using internal::xml::EventSink;
using internal::xml::PushParser;

/// Gives the bytes of a text, at most so many with each read.
class PiecewiseStream : public NSInputStream {
 public:
  PiecewiseStream(std::string bytes, std::size_t most) : bytes_(std::move(bytes)), most_(most) {}
  NSInteger read(std::span<std::uint8_t> buffer) override {
    const std::size_t count = std::min({bytes_.size() - taken_, most_, buffer.size()});
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(taken_), count, buffer.begin());
    taken_ += count;
    return static_cast<NSInteger>(count);
  }

 private:
  std::string bytes_;
  std::size_t most_;
  std::size_t taken_ = 0;
};

/// Writes the events of the parser below down as `XMLEventLines` does.
class SinkLines : public EventSink {
 public:
  explicit SinkLines(NSXMLParser& parser) : parser_(parser) {}
  XMLEventLines events;

  void startDocument() override { events.parserDidStartDocument(parser_); }
  void startElement(std::string_view name,
                    const std::shared_ptr<NSDictionary>& attributes) override {
    events.parserDidStartElement(parser_, {name, std::nullopt, std::nullopt, attributes});
  }
  void endElement(std::string_view name) override {
    events.parserDidEndElement(parser_, name, std::nullopt, std::nullopt);
  }
  void characters(std::string_view text) override {
    EXPECT_TRUE(internal::base::isUTF8(text)) << "cut inside of a character";
    events.parserFoundCharacters(parser_, text);
  }
  void ignorableWhitespace(std::string_view text) override {
    events.parserFoundIgnorableWhitespace(parser_, text);
  }

 private:
  NSXMLParser& parser_;
};

/// The events of a document that is pushed in pieces, with what came of it at the end.
Lines eventsInPieces(std::string_view document, std::size_t size) {
  NSXMLParser unused{NSData()};
  SinkLines sink(unused);
  PushParser parser(sink, NSXMLParserLimits());
  std::span<const std::uint8_t> rest(reinterpret_cast<const std::uint8_t*>(document.data()),
                                     document.size());
  bool isMore = true;
  while (isMore && !rest.empty()) {
    const auto piece = rest.first(std::min(size, rest.size()));
    isMore = parser.push(piece);
    rest = rest.subspan(piece.size());
  }
  const bool isWhole = parser.finish();
  const auto& fault = parser.fault();
  sink.events.lines.push_back(isWhole ? "whole" : "fault " + std::to_string(fault->code));
  return sink.events.lines;
}

std::string inUTF16(std::string_view text, bool isBigEndian) {
  std::string bytes;
  const auto append = [&](char32_t unit) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += isBigEndian ? high : low;
    bytes += isBigEndian ? low : high;
  };
  append(0xFEFF);
  while (!text.empty()) {
    const auto character = internal::base::firstUTF8Character(text);
    text.remove_prefix(character.length);
    internal::base::forEachUnit(character.codePoint, append);
  }
  return bytes;
}

/// In an encoding of one byte a character, which holds the euro sign at a place of its own.
std::string inOneByte(std::string_view text, char euro) {
  std::string bytes;
  while (!text.empty()) {
    const auto character = internal::base::firstUTF8Character(text);
    text.remove_prefix(character.length);
    bytes += character.codePoint == U'\u20AC' ? euro : static_cast<char>(character.codePoint);
  }
  return bytes;
}

/// Every kind of markup, long texts too, with letters beyond ASCII where `more` has some.
std::string documentWith(const std::string& encoding, const std::string& more) {
  std::string text = "<?xml version=\"1.0\"" + encoding + "?>\r\n";
  text +=
      "<!-- c\u00E9 --><!DOCTYPE a [<!ELEMENT a (b|c|d)*>\r\n<!ENTITY e \"x\u00FC<c/>y\">"
      "<!ATTLIST b k CDATA 'def\u00E4'>]>\r\n";
  text += "<a>\r\n <b name=\"\u00E9" + more + "&amp;&e2;\" other='>'>t\u00E9" + more +
          "&#x20AC;&lt;&e;]] ></b>\r\r\n<c>";
  for (int i = 0; i < 40; ++i) text += "0123456789 \u00E9" + more + "\r\n";
  text += "</c><d><![CDATA[<\u00E8" + more + "]]\r]]><![CDATA[\n>\r\n\r\r\n\n]]></d><?p i?>";
  for (int i = 0; i < 12; ++i) text += "<b k='" + std::to_string(i) + more + "'>\u00E0</b>";
  text += "</a>\r\n<!-- end -->\r\n";
  text.replace(text.find("&e2;"), 4, "&#233;");
  return text;
}

struct EncodingCase {
  const char* name;
  std::string bytes;
};
std::vector<EncodingCase> encodings() {
  const std::string far = "\u20AC\u4E2D\U0001F600";
  return {
      {"UTF8", documentWith("", far)},
      {"UTF8WithMark", "\xEF\xBB\xBF" + documentWith(" encoding='UTF-8'", far)},
      {"UTF16LittleEndian", inUTF16(documentWith(" encoding='UTF-16'", far), false)},
      {"UTF16BigEndian", inUTF16(documentWith("", far), true)},
      {"Latin1", inOneByte(documentWith(" encoding='ISO-8859-1'", ""), '?')},
      {"Windows1252", inOneByte(documentWith(" encoding='windows-1252'", "\u20AC"), '\x80')},
  };
}

TEST(NSXMLParserPieces, OfEverySizeGiveTheSameEvents) {
  for (const EncodingCase& row : encodings()) {
    const Lines whole = eventsInPieces(row.bytes, row.bytes.size());
    ASSERT_EQ(whole.back(), "whole") << row.name;
    ASSERT_EQ(whole.size(), 54U) << row.name;
    for (std::size_t size = 1; size < row.bytes.size(); ++size)
      EXPECT_TRUE(eventsInPieces(row.bytes, size) == whole) << row.name << " in " << size;
  }
}

TEST(NSXMLParserPieces, AreDecoded) {
  for (const EncodingCase& row : encodings()) {
    const Lines lines = eventsInPieces(row.bytes, row.bytes.size());
    const bool isLatin1 = std::string_view(row.name) == "Latin1";
    const bool isWindows = std::string_view(row.name) == "Windows1252";
    const std::string more = isLatin1 ? "" : isWindows ? "\u20AC" : "\u20AC\u4E2D\U0001F600";
    EXPECT_EQ(lines[0], "start") << row.name;
    EXPECT_EQ(lines[3], "<b name=\u00E9" + more + "&\u00E9 other=> k=def\u00E4>") << row.name;
    EXPECT_EQ(lines[4], "text t\u00E9" + more + "\u20AC<x\u00FC") << row.name;
    EXPECT_EQ(lines[14], "text <\u00E8" + more + "]]\n\n>\n\n\n\n") << row.name;
  }
}

TEST(NSXMLParserPieces, OfQuotedTextsHaveLineFeeds) {
  // libxml2 tells long sections in parts of its own; a line end may lie across any of them.
  for (std::size_t length = 280; length < 620; ++length) {
    const std::string text(length, 'x');
    const std::string document =
        "<a><![CDATA[" + text + "\r\n" + text + "\r]]><![CDATA[\n" + text + "\r\r\n]]>&#13;\n</a>";
    const std::string told = "text " + text + "\n" + text + "\n\n" + text + "\n\n\r\n";
    const Lines lines = {"start", "<a>", told, "</a>", "whole"};
    EXPECT_EQ(eventsInPieces(document, document.size()), lines) << length;
    EXPECT_EQ(eventsInPieces(document, 1 + length % 97), lines) << length;
  }
}

TEST(NSXMLParserPieces, OfStreamsGiveTheSameEvents) {
  for (const EncodingCase& row : encodings()) {
    Lines whole = eventsInPieces(row.bytes, row.bytes.size());
    whole.back() = "end";
    whole.emplace_back("true");
    for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7},
                                   std::size_t{100}, row.bytes.size()}) {
      NSXMLParser parser(std::make_shared<PiecewiseStream>(row.bytes, size));
      EXPECT_EQ(eventsOf(parser), whole) << row.name << ", pieces of " << size;
    }
  }
}

TEST(NSXMLParserPieces, OfBrokenDocumentsGiveTheSameFault) {
  const std::string broken[] = {
      "<a>\n<b c='1' c='2'/></a>",
      "<a>t\xFF</a>    ",
      "<a>&e;</a>",
      "<a><b>text</a>",
      "<a>text</a><b/>",
      "<a b='\xC3(' c='1'></a>",
      "<a><![CDATA[\xE2\x82]]></a>",
      "<?xml version='1.0' encoding='x-none'?><a/>",
      "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>",
  };
  for (const std::string& document : broken) {
    const Lines whole = eventsInPieces(document, document.size());
    EXPECT_TRUE(whole.back().starts_with("fault")) << document;
    for (std::size_t size = 1; size < document.size(); ++size)
      EXPECT_EQ(eventsInPieces(document, size).back(), whole.back())
          << document << ", pieces of " << size;
  }
}

TEST(NSXMLParserPieces, OfBytesThatFitNoEncodingAreAnError) {
  const std::string far = "\u20AC";
  const std::string tail = "<!--" + std::string(200, ' ') + "-->";
  const struct {
    const char* name;
    std::string bytes;
    std::string broken;  // in the place of as many bytes
    std::size_t first;   // where it is put, at the least
  } rows[] = {
      {"LoneHighHalf", inUTF16("<a b='" + std::string(40, 'x') + "'>t</a>" + tail, false),
       std::string("x\xD8", 2), 16},
      {"LoneLowHalf", inUTF16("<a b='" + std::string(40, 'x') + "'>t</a>" + tail, true),
       std::string("\xDCx", 2), 16},
      {"Windows1252",
       inOneByte("<?xml version='1.0' encoding='windows-1252'?><a b='x'>t</a>" + tail, '\x80'),
       "\x81", 46},
      {"ASCII", "<?xml version='1.0' encoding='US-ASCII'?><a b='x'>t</a>" + tail, "\xE9", 42},
      {"UTF8", "<?xml version='1.0' encoding='UTF-8'?><a b='x'>t</a>" + tail, "\xE9", 38},
  };
  for (const auto& row : rows) {
    for (std::size_t at = row.first; at < row.bytes.size(); at += row.broken.size()) {
      std::string bytes = row.bytes;
      bytes.replace(at, row.broken.size(), row.broken);
      for (const std::size_t size : {bytes.size(), std::size_t{1}, std::size_t{7}}) {
        const Lines lines = eventsInPieces(bytes, size);
        ASSERT_TRUE(lines.back().starts_with("fault")) << row.name << " at " << at << ", " << size;
      }
    }
  }
}

TEST(NSXMLParserPieces, BehindADocumentMayBeZerosAlone) {
  const struct {
    std::string_view behind;
    bool isTaken;
  } rows[] = {
      {{"\0", 1}, true},    {{"\0\0\0", 3}, true},    {{"\0\r", 2}, false},
      {{"\0\n", 2}, false}, {{"\r\0", 2}, true},      {{"\n\r\n\0\0", 5}, true},
      {{"\0 ", 2}, false},  {{"\0\0<b/>", 6}, false}, {{"x\0", 2}, false},
  };
  for (const std::size_t length : {std::size_t{1}, std::size_t{32'760}, std::size_t{65'520}}) {
    const std::string document = "<a>" + std::string(length, 'x') + "</a>";
    for (const auto& row : rows) {
      for (std::size_t more = 0; more < 20; more += 4) {
        const std::string bytes = document + std::string(more, '\n') + std::string(row.behind);
        for (const std::size_t size : {bytes.size(), bytes.size() - 1, std::size_t{1000}}) {
          const Lines lines = eventsInPieces(bytes, size);
          EXPECT_EQ(lines.back() == "whole", row.isTaken)
              << length << ", " << more << ", " << &row - rows << ", " << size;
        }
      }
    }
  }
  const std::string wide = inUTF16("<a/>", false);
  for (std::size_t size = 1; size < 10; ++size) {
    EXPECT_EQ(eventsInPieces(wide + std::string(1, '\0'), size).back(), "whole") << size;
    EXPECT_NE(eventsInPieces(wide + "x", size).back(), "whole") << "half a character, " << size;
  }
}

TEST(NSXMLParserPieces, CutShortAnywhereAreAnErrorWithAPlace) {
  const std::string document = documentWith("", "\u20AC");
  const std::size_t whole = document.rfind("</a>") + 4;
  for (std::size_t length = 0; length < whole; ++length) {
    const auto stream = std::make_shared<PiecewiseStream>(document.substr(0, length), 64);
    NSXMLParser parser(stream);
    ASSERT_FALSE(parser.parse()) << length;
    ASSERT_NE(parser.parserError(), nullptr) << length;
    ASSERT_EQ(parser.parserError()->domain(), NSXMLParserErrorDomain) << length;
    ASSERT_GE(parser.lineNumber(), 1) << length;
  }
}

TEST(NSXMLParserStreams, AreOpenedAndClosedByTheParser) {
  const auto stream = NSInputStream::initWithData(NSData(std::string_view("<a/>")));
  NSXMLParser parser(stream);
  EXPECT_TRUE(parser.parse());
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
  EXPECT_FALSE(parser.parse()) << "its bytes are gone";
  EXPECT_EQ(parser.parserError()->domain(), NSPOSIXErrorDomain);
  EXPECT_EQ(parser.parserError()->code(), EBADF);
}

TEST(NSXMLParserStreams, ThatAreOpenStayOpen) {
  const auto stream = NSInputStream::initWithData(NSData(std::string_view("<a/>")));
  stream->open();
  NSXMLParser parser(stream);
  EXPECT_TRUE(parser.parse());
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusAtEnd);
}

TEST(NSXMLParserStreams, ThatAreMissingAreEmpty) {
  NSXMLParser parser{std::shared_ptr<NSInputStream>()};
  EXPECT_FALSE(parser.parse());
  EXPECT_EQ(parser.parserError()->code(), NSXMLParserEmptyDocumentError);
}

TEST(NSXMLParserStreams, TellTheirOwnFailure) {
  class Failing : public NSInputStream {
   public:
    explicit Failing(NSInteger answer) : answer_(answer) {}
    NSInteger read(std::span<std::uint8_t> buffer) override {
      if (answer_ < 0) setStreamError(NSError::errorWithDomain("own", 7));
      const NSInteger extra = std::exchange(isFirst_, false) ? 0 : answer_;
      std::ranges::copy(std::string_view("<a>"), buffer.begin());
      return extra == 0 ? 3 : extra;
    }

   private:
    NSInteger answer_;
    bool isFirst_ = true;
  };
  NSXMLParser failing(std::make_shared<Failing>(-1));
  EXPECT_EQ(eventsOf(failing), (Lines{"error 7", "false"}));
  NSXMLParser boasting(std::make_shared<Failing>(1'000'000));
  EXPECT_EQ(eventsOf(boasting), (Lines{"error " + std::to_string(EIO), "false"}));
}

}  // namespace
}  // namespace ORLFoundation
