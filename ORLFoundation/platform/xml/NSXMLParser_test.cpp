#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParserLoader.h>
#include <ORLFoundation/platform/xml/NSXMLParser_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::HasSubstr;

class XMLFiles : public orlftest::TemporaryFolderTest {};

TEST_F(XMLFiles, ThatADocumentNamesAreNeverOpened) {
  const std::string secret = write("secret", "<!ENTITY s 'told'>");
  const std::string uses[] = {
      "<!DOCTYPE a SYSTEM 'file://" + secret + "'><a>&s;</a>",
      "<!DOCTYPE a [<!ENTITY % p SYSTEM 'file://" + secret + "'>%p;]><a>&s;</a>",
      "<!DOCTYPE a [<!ENTITY s SYSTEM 'file://" + secret + "'>]><a>&s;</a>",
      "<!DOCTYPE a [<!ENTITY s SYSTEM 'file://" + secret + "'>]><a b='&s;'/>",
  };
  for (const std::string& document : uses) {
    const std::string main = write("main.xml", document);
    NSXMLParser parser(NSURL::fileURLWithPath(main));
    const Lines lines = eventsOf(parser);
    EXPECT_EQ(lines.back(), "false") << document;
    for (const std::string& line : lines) EXPECT_EQ(line.find("told"), line.npos) << document;
  }
}

struct PlaceCase {
  const char* name;
  std::string document;
  std::string error;
};

TEST(NSXMLParser, TellsThePlaceOfAnError) {
  const PlaceCase rows[] = {
      {"WrongEnd", "<a>\n  <b>\n  </c>\n</a>", "76 at 3:7"},
      {"Truncated", "<a>\n<b>", "5 at 2:4"},
      {"TruncatedTag", "<a>\n<b c", "41 at 2:5"},
      {"TextBehind", "<a/>\nx", "5 at 2:1"},
      {"InvalidUTF8", "<a>\n\xFF</a>", "81 at 2:1"},
      {"Attribute", "<a>\n<b c='1' c='2'/></a>", "42 at 2:15"},
      {"Undeclared", "<a>\n&e;</a>", "26 at 2:4"},
      {"InsideAnEntity", "<!DOCTYPE a [<!ENTITY e '\n\n<b>'>]>\n<a>&e;</a>", "77 at 4:7"},
      {"Encoding", "<?xml version='1.0' encoding='x-none'?><a/>", "32 at 1:38"},
  };
  for (const PlaceCase& row : rows) EXPECT_EQ(errorOf(row.document), row.error) << row.name;
}

TEST(NSXMLParser, TellsTheErrorInWords) {
  NSXMLParser parser(NSData(std::string_view("<a>\n&e;</a>")));
  EXPECT_FALSE(parser.parse());
  const auto error = parser.parserError();
  EXPECT_EQ(error->domain(), NSXMLParserErrorDomain);
  EXPECT_EQ(error->localizedDescription(), "line 2, column 4: The entity \"e\" is not declared.");
  EXPECT_EQ(error->userInfo()->objectForKey(NSXMLParserErrorMessageKey).as<std::string>(),
            "The entity \"e\" is not declared.");
}

TEST(NSXMLParser, TellsHowADocumentEndsWrong) {
  const auto messageOf = [](std::string_view document) {
    NSXMLParser parser((NSData(document)));
    EXPECT_FALSE(parser.parse()) << document;
    return parser.parserError()->userInfo()->objectForKey(NSXMLParserErrorMessageKey).description();
  };
  EXPECT_EQ(messageOf(""), "The document holds no element.");
  EXPECT_EQ(messageOf("<!-- a -->\n"), "The document holds no element.");
  EXPECT_EQ(messageOf("<a><b></b>"), "The document ends before its elements do.");
  EXPECT_EQ(messageOf("<a/>x"), "Extra content at the end of the document");
  EXPECT_EQ(messageOf("<a/><b/>"), "Extra content at the end of the document");
}

/// Does something at an event of a stated number.
class AtEvent : public XMLEventLines {
 public:
  AtEvent(std::size_t event, std::function<void(NSXMLParser&)> act)
      : event_(event), act_(std::move(act)) {}
  void parserDidStartDocument(NSXMLParser& parser) override {
    XMLEventLines::parserDidStartDocument(parser);
    count(parser);
  }
  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override {
    XMLEventLines::parserDidStartElement(parser, tag);
    count(parser);
  }
  void parserDidEndElement(NSXMLParser& parser, std::string_view name,
                           std::optional<std::string_view> space,
                           std::optional<std::string_view> qualified) override {
    XMLEventLines::parserDidEndElement(parser, name, space, qualified);
    count(parser);
  }
  void parserFoundCharacters(NSXMLParser& parser, std::string_view text) override {
    XMLEventLines::parserFoundCharacters(parser, text);
    count(parser);
  }
  void parserFoundIgnorableWhitespace(NSXMLParser& parser, std::string_view text) override {
    XMLEventLines::parserFoundIgnorableWhitespace(parser, text);
    count(parser);
  }
  void parserDidEndDocument(NSXMLParser& parser) override {
    XMLEventLines::parserDidEndDocument(parser);
    count(parser);
  }

 private:
  void count(NSXMLParser& parser) {
    if (seen_++ == event_) act_(parser);
  }
  std::size_t seen_ = 0;
  std::size_t event_;
  std::function<void(NSXMLParser&)> act_;
};

// Every kind of event, text of an entity among them.
constexpr std::string_view kAllEvents =
    "<!DOCTYPE a [<!ELEMENT a (b|c)*><!ENTITY e '<c>d</c>'>]>\n"
    "<a> <b x='1'>t<![CDATA[u]]></b>&e;</a>";
const Lines kAllLines = {"start", "<a>",    "blanks  ", "<b x=1>", "text tu", "</b>",
                         "<c>",   "text d", "</c>",     "</a>",    "end",     "true"};
constexpr std::size_t kAllCount = 12;  // the text "tu" comes in two

TEST(NSXMLParser, AbortsAtAnyEvent) {
  EXPECT_EQ(eventsOf(kAllEvents), kAllLines);
  for (std::size_t event = 0; event < kAllCount; ++event) {
    NSXMLParser parser((NSData(kAllEvents)));
    NSInteger line = 0;
    NSInteger column = 0;
    const auto events = std::make_shared<AtEvent>(event, [&](NSXMLParser& running) {
      line = running.lineNumber();
      column = running.columnNumber();
      running.abortParsing();
      running.abortParsing();
    });
    parser.setDelegate(events);
    EXPECT_FALSE(parser.parse()) << event;
    ASSERT_NE(parser.parserError(), nullptr) << event;
    EXPECT_EQ(errorOf(parser.parserError()),
              "512 at " + std::to_string(line) + ":" + std::to_string(column))
        << event;
    EXPECT_EQ(events->lines.back(), "error 512") << event;
    for (std::size_t i = 0; i + 1 < events->lines.size(); ++i)
      EXPECT_EQ(kAllLines[i].substr(0, events->lines[i].size()), events->lines[i]) << event;
  }
}

TEST(NSXMLParser, AbortTellsItsPlace) {
  NSXMLParser parser(NSData(std::string_view("<a>\n <b>\n  <c/></b></a>")));
  const auto events = std::make_shared<AtEvent>(5, [](NSXMLParser& p) { p.abortParsing(); });
  parser.setDelegate(events);
  EXPECT_FALSE(parser.parse());
  EXPECT_EQ(events->lines,
            (Lines{"start", "<a>", "text \n ", "<b>", "text \n  ", "<c>", "error 512"}));
  EXPECT_EQ(errorOf(parser.parserError()), "512 at 3:5");
  EXPECT_EQ(parser.lineNumber(), 3);
  EXPECT_EQ(parser.columnNumber(), 5);
}

TEST(NSXMLParser, AbortOutsideOfAParseDoesNothing) {
  NSXMLParser parser(NSData(std::string_view("<a/>")));
  parser.abortParsing();
  EXPECT_TRUE(parser.parse());
  parser.abortParsing();
  EXPECT_EQ(parser.parserError(), nullptr);
  EXPECT_TRUE(parser.parse());
}

TEST(NSXMLParser, ThrowsAgainWhatADelegateThrows) {
  for (std::size_t event = 0; event < kAllCount; ++event) {
    NSXMLParser parser((NSData(kAllEvents)));
    const auto events = std::make_shared<AtEvent>(
        event, [](NSXMLParser&) { throw std::domain_error("from the delegate"); });
    parser.setDelegate(events);
    try {
      static_cast<void>(parser.parse());
      FAIL() << event;
    } catch (const std::domain_error& error) {
      EXPECT_STREQ(error.what(), "from the delegate");
    }
    EXPECT_EQ(parser.parserError(), nullptr);
    EXPECT_EQ(eventsOf(parser), kAllLines) << "the parser can be used again";
  }
}

TEST(NSXMLParser, ParsesNoTwoDocumentsAtATime) {
  NSXMLParser parser(NSData(std::string_view("<a/>")));
  bool inner = true;
  const auto events =
      std::make_shared<AtEvent>(1, [&](NSXMLParser& running) { inner = running.parse(); });
  parser.setDelegate(events);
  EXPECT_TRUE(parser.parse());
  EXPECT_FALSE(inner);
  EXPECT_EQ(events->lines, (Lines{"start", "<a>", "</a>", "end"}));
}

TEST(NSXMLParser, NeedsNoDelegate) {
  NSXMLParser whole(NSData(std::string_view("<a> </a>")));
  EXPECT_EQ(whole.lineNumber(), 0);
  EXPECT_TRUE(whole.parse());
  EXPECT_EQ(whole.delegate(), nullptr);
  NSXMLParser broken(NSData(std::string_view("<a> ")));
  EXPECT_FALSE(broken.parse());
  EXPECT_EQ(errorOf(broken.parserError()), "5 at 1:4");
}

TEST(NSXMLParser, LetsAttributesBeKept) {
  class Keeper : public NSXMLParserDelegate {
   public:
    std::vector<std::shared_ptr<NSDictionary>> all;
    void parserDidStartElement(NSXMLParser& /*parser*/, const NSXMLStartTag& tag) override {
      if (tag.didStartElement != "drop") all.push_back(tag.attributes);
    }
  };
  const auto keeper = std::make_shared<Keeper>();
  NSXMLParser parser(NSData(
      std::string_view("<r><a x='1' y=''/><drop x='2'/><drop x='3'/><b x='4'/><c/><d/></r>")));
  parser.setDelegate(keeper);
  ASSERT_TRUE(parser.parse());
  ASSERT_EQ(keeper->all.size(), 5U);
  EXPECT_EQ(keeper->all[0]->count(), 0U);
  const NSDictionary& first = *keeper->all[1];
  EXPECT_EQ(first.count(), 2U);
  EXPECT_EQ(first.objectForKey("x"), id("1"));
  EXPECT_EQ(first.objectForKey("y"), id(""));
  EXPECT_TRUE(first.objectForKey("z").isNil());
  EXPECT_TRUE(first.objectForKey(1).isNil());
  EXPECT_TRUE(first.objectForKey(nullptr).isNil());
  EXPECT_EQ(first.allKeys(), (std::vector<id>{"x", "y"}));
  EXPECT_EQ(first.allValues(), (std::vector<id>{"1", ""}));
  EXPECT_EQ(first.keyEnumerator()->allObjects()->count(), 2U);
  EXPECT_EQ(first.description(), "{\n    x = 1;\n    y = \"\";\n}");
  EXPECT_TRUE(first.isEqual(NSDictionary::dictionaryWithEntries({{"y", ""}, {"x", "1"}}).get()));
  EXPECT_EQ(keeper->all[1]->copy(), keeper->all[1]);
  EXPECT_TRUE(first.isEqual(keeper->all[1]->mutableCopy().get()));
  NSFastEnumerationState state;
  std::vector<id> batch(1);
  EXPECT_EQ(first.countByEnumeratingWithState(state, batch), 1U);
  EXPECT_EQ(batch[0], id("x"));
  EXPECT_EQ(first.countByEnumeratingWithState(state, batch), 1U);
  EXPECT_EQ(batch[0], id("y"));
  EXPECT_EQ(first.countByEnumeratingWithState(state, batch), 0U);
  EXPECT_EQ(keeper->all[2]->objectForKey("x"), id("4"));
  EXPECT_EQ(keeper->all[3], keeper->all[4]) << "there is one empty dictionary";
}

TEST_F(XMLFiles, AreRead) {
  NSXMLParser parser(NSURL::fileURLWithPath(write("a b.xml", kAllEvents)));
  EXPECT_EQ(eventsOf(parser), kAllLines);
  EXPECT_EQ(eventsOf(parser), kAllLines) << "a second time";
  NSXMLParser absent(NSURL::fileURLWithPath(path("absent.xml")));
  EXPECT_EQ(eventsOf(absent), (Lines{"error " + std::to_string(ENOENT), "false"}));
  EXPECT_EQ(absent.parserError()->domain(), NSPOSIXErrorDomain);
  NSXMLParser folder(NSURL::fileURLWithPath(folder_.string()));
  EXPECT_EQ(eventsOf(folder), (Lines{"error " + std::to_string(EISDIR), "false"}));
}

TEST(NSXMLParser, AsksTheHostsLoaderForOtherAddresses) {
  const NSURL url = *NSURL::URLWithString("https://example.com/a.xml");
  NSXMLParser parser(url);
  EXPECT_EQ(eventsOf(parser), (Lines{"error -1002", "false"}));
  EXPECT_EQ(parser.parserError()->domain(), NSURLErrorDomain);
  EXPECT_THAT(parser.parserError()->localizedDescription(), HasSubstr(url.absoluteString()));

  std::vector<std::string> asked;
  std::string answer = "<a/>";
  const Replaced loader(NSSetXMLParserLoader,
                        NSXMLParserLoader([&](const NSURL& address,
                                              NSErrorSlot error) -> std::shared_ptr<NSInputStream> {
                          asked.push_back(address.absoluteString());
                          if (!answer.empty())
                            return NSInputStream::initWithData(NSData(std::string_view(answer)));
                          NSFillErrorSlot(error, NSURLErrorDomain, -1009, "offline");
                          return nullptr;
                        }));
  EXPECT_EQ(eventsOf(parser), (Lines{"start", "<a>", "</a>", "end", "true"}));
  answer = "<!DOCTYPE a SYSTEM 'https://example.com/a.dtd' [<!ENTITY e SYSTEM 'b'>]><a>&e;</a>";
  EXPECT_EQ(eventsOf(parser), (Lines{"start", "<a>", "error 29", "false"}));
  EXPECT_EQ(asked, (std::vector<std::string>(2, url.absoluteString())));
  answer.clear();
  EXPECT_EQ(eventsOf(parser), (Lines{"error -1009", "false"}));
}

TEST(NSXMLParser, LoaderWithoutAWordIsAnErrorToo) {
  const Replaced loader(NSSetXMLParserLoader, NSXMLParserLoader([](const NSURL&, NSErrorSlot) {
                          return std::shared_ptr<NSInputStream>();
                        }));
  NSXMLParser parser(*NSURL::URLWithString("data:,a"));
  EXPECT_EQ(eventsOf(parser), (Lines{"error -1002", "false"}));
}

}  // namespace
}  // namespace ORLFoundation
