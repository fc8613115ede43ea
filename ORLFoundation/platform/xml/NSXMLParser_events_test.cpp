#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/NSXMLParser_testing.h>
#include <gtest/gtest.h>

#include <string_view>

namespace ORLFoundation {
namespace {

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
    {"Nothing", "", {"error 4", "false"}},
    {"NoElement", "<?xml version='1.0'?>\n<!-- a -->", {"start", "error 4", "false"}},
    {"NoMarkup", "text", {"start", "error 4", "false"}},
    {"NoEnd", "<a><b/>text", {"start", "<a>", "<b>", "</b>", "text text", "error 5", "false"}},
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

}  // namespace
}  // namespace ORLFoundation
