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

struct EventsCase {
  const char* name;
  std::string_view document;
  Lines lines;
};
const EventsCase kEvents[] = {
    {"EmptyElement", "<a/>", {"start", "<a>", "</a>", "end", "true"}},
    {"Declaration",
     "<?xml version='1.0'?>\n<!-- b --><?c d?><a></a>\n<!-- e -->",
     {"start", "<a>", "</a>", "end", "true"}},
    {"Attributes",
     "<a b='1' c=\"2 &amp; 3&#x20AC;\" d='\t\n '/>",
     {"start", "<a b=1 c=2 & 3\u20AC d=   >", "</a>", "end", "true"}},
    {"TextAndReferences",
     "<a>x&lt;&#65;<b/>y<!-- n -->z</a>",
     {"start", "<a>", "text x<A", "<b>", "</b>", "text yz", "</a>", "end", "true"}},
    {"CharacterData",
     "<a><![CDATA[<b>&amp;]]>c<![CDATA[]]></a>",
     {"start", "<a>", "text <b>&amp;c", "</a>", "end", "true"}},
    {"LineEnds", "<a>1\r\n2\r3\n4</a>", {"start", "<a>", "text 1\n2\n3\n4", "</a>", "end", "true"}},
    {"NamesAsWritten",
     "<p:a xmlns:p='u' xmlns='v' p:b='1' b='2'><p:c/><d/></p:a>",
     {"start", "<p:a xmlns:p=u xmlns=v p:b=1 b=2>", "<p:c>", "</p:c>", "<d>", "</d>", "</p:a>",
      "end", "true"}},
    {"UnboundPrefix",
     "<p:a q:b='1'><r:c/></p:a>",
     {"start", "<p:a q:b=1>", "<r:c>", "</r:c>", "</p:a>", "end", "true"}},
    {"PrefixBoundToNothing",
     "<a xmlns:p='' p:b='1' xmlns=''/><!-- not in namespaces, but in XML -->",
     {"start", "<a xmlns= xmlns:p= p:b=1>", "</a>", "end", "true"}},
    {"TwoNamesOfOneNamespace",
     "<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>",
     {"start", "<a xmlns:p=u xmlns:q=u p:b=1 q:b=2>", "</a>", "end", "true"}},
    {"Colons", "<a:b:c :d='1'/>", {"start", "<a:b:c :d=1>", "</a:b:c>", "end", "true"}},
    {"AttributesOfXML",
     "<a xml:lang='en' xml:space='preserve'> </a>",
     {"start", "<a xml:lang=en xml:space=preserve>", "text  ", "</a>", "end", "true"}},
    {"BlanksWithoutDTD",
     "<a>\n <b/>\n</a>",
     {"start", "<a>", "text \n ", "<b>", "</b>", "text \n", "</a>", "end", "true"}},
    {"Defaults",
     "<!DOCTYPE a [<!ATTLIST a b CDATA 'x' c NMTOKEN #IMPLIED>]><a c=' 1 '/>",
     {"start", "<a c=1 b=x>", "</a>", "end", "true"}},
    {"NotWellFormed", "<a><b></a>", {"start", "<a>", "<b>", "error 76", "false"}},
    {"Nothing", "", {"error 5", "false"}},
    {"ZerosBehind", {"<a/>\0\0", 6}, {"start", "<a>", "</a>", "end", "true"}},
    {"MoreBehindZeros", {"<a/>\0<", 6}, {"start", "<a>", "</a>", "error 5", "false"}},
    {"ZeroInside", {"<a>\0</a>", 8}, {"start", "<a>", "error 9", "false"}},
};

TEST(NSXMLParser, TellsEventsInOrder) {
  for (const EventsCase& row : kEvents) EXPECT_EQ(eventsOf(row.document), row.lines) << row.name;
}

const EventsCase kWhitespace[] = {
    {"BetweenChildren",
     "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b (#PCDATA)>]><a>\n <b> </b>\t</a>",
     {"start", "<a>", "blanks \n ", "<b>", "text  ", "</b>", "blanks \t", "</a>", "end", "true"}},
    {"MixedContent",
     "<!DOCTYPE a [<!ELEMENT a (#PCDATA|b)*>]><a> <b/> </a>",
     {"start", "<a>", "text  ", "<b>", "</b>", "text  ", "</a>", "end", "true"}},
    {"AnyContent",
     "<!DOCTYPE a [<!ELEMENT a ANY>]><a> </a>",
     {"start", "<a>", "text  ", "</a>", "end", "true"}},
    {"TextWhereNoneBelongs",
     "<!DOCTYPE a [<!ELEMENT a (b)>]><a>\n x <b/> </a>",
     {"start", "<a>", "blanks \n ", "text x ", "<b>", "</b>", "blanks  ", "</a>", "end", "true"}},
    {"QuotedBlanks",
     "<!DOCTYPE a [<!ELEMENT a (b)>]><a> <![CDATA[ ]]> <b/></a>",
     {"start", "<a>", "blanks  ", "text   ", "<b>", "</b>", "</a>", "end", "true"}},
    {"PrefixedName",
     "<!DOCTYPE p:a [<!ELEMENT p:a (b)>]><p:a> <a> </a></p:a>",
     {"start", "<p:a>", "blanks  ", "<a>", "text  ", "</a>", "</p:a>", "end", "true"}},
    {"InsideAnEntity",
     "<!DOCTYPE a [<!ELEMENT a (b)><!ENTITY e ' <b/> '>]><a>&e;</a>",
     {"start", "<a>", "blanks  ", "<b>", "</b>", "blanks  ", "</a>", "end", "true"}},
};

TEST(NSXMLParser, TellsIgnorableWhitespaceByContentModels) {
  for (const EventsCase& row : kWhitespace)
    EXPECT_EQ(eventsOf(row.document), row.lines) << row.name;
}

const EventsCase kEntities[] = {
    {"Text",
     "<!DOCTYPE a [<!ENTITY e 'x&f;'><!ENTITY f 'y'>]><a>&e;-&e;</a>",
     {"start", "<a>", "text xy-xy", "</a>", "end", "true"}},
    {"InAttributes",
     "<!DOCTYPE a [<!ENTITY e 'x&f;'><!ENTITY f 'y&amp;'>]><a b='&e;-&f;'/>",
     {"start", "<a b=xy&-y&>", "</a>", "end", "true"}},
    {"Elements",
     "<!DOCTYPE a [<!ENTITY e '<b c=\"&f;\">&f;</b>'><!ENTITY f 'y'>]><a>&e;&e;</a>",
     {"start", "<a>", "<b c=y>", "text y", "</b>", "<b c=y>", "text y", "</b>", "</a>", "end",
      "true"}},
    {"Parameter",
     "<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"x\">'>%p;]><a>&e;</a>",
     {"start", "<a>", "text x", "</a>", "end", "true"}},
    {"HalfAnElement",
     "<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</b></a>",
     {"start", "<a>", "<b>", "error 77", "false"}},
    {"Undeclared", "<a>&e;</a>", {"start", "<a>", "error 26", "false"}},
    {"UndeclaredInAttribute", "<a b='&e;'/>", {"start", "error 26", "false"}},
    {"UndeclaredBesideAnExternalDTD",
     "<!DOCTYPE a SYSTEM 'absent.dtd'><a>&e;</a>",
     {"start", "<a>", "error 26", "false"}},
    {"External",
     "<!DOCTYPE a [<!ENTITY e SYSTEM 'absent.ent'>]><a>x&e;</a>",
     {"start", "<a>", "text x", "error 29", "false"}},
    {"ExternalInsideAnother",
     "<!DOCTYPE a [<!ENTITY e SYSTEM 'absent.ent'><!ENTITY f '&e;'>]><a>&f;</a>",
     {"start", "<a>", "error 29", "false"}},
    {"ExternalInAttribute",
     "<!DOCTYPE a [<!ENTITY e SYSTEM 'absent.ent'>]><a b='&e;'/>",
     {"start", "error 29", "false"}},
    {"ExternalUnused",
     "<!DOCTYPE a SYSTEM 'absent.dtd' [<!ENTITY e SYSTEM 'absent.ent'>\n"
     "<!ENTITY % p SYSTEM 'absent.ent'>%p;]><a/>",
     {"start", "<a>", "</a>", "end", "true"}},
    {"Recursive",
     "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>",
     {"start", "<a>", "error 89", "false"}},
};

TEST(NSXMLParser, ReplacesInternalEntitiesAlone) {
  for (const EventsCase& row : kEntities) EXPECT_EQ(eventsOf(row.document), row.lines) << row.name;
}

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
