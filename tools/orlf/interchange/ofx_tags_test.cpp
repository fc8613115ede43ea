#include "interchange/ofx_tags.h"

#include <gtest/gtest.h>

namespace {

using orlftool::indentedXml;
using orlftool::remarksOnTags;
using Remarks = std::vector<std::string>;

struct RemarkCase {
  const char* name;
  const char* xml;
  Remarks remarks;
};
const RemarkCase kRemarks[] = {
    {"Clean", "<A x=\"1\" y='<2'><B>t</B><C/><!-- c --><?p i?></A>\n", {}},
    {"NeverClosed", "<A><B><B><C>t</C></A>", {"<B> is never closed (2 times)"}},
    {"NeverClosedAtTheEnd", "<A><B>", {"<A> is never closed", "<B> is never closed"}},
    {"ClosesNothing", "<A></B></A></A>", {"</A> closes nothing", "</B> closes nothing"}},
    {"TwoRoots", "<A/><B/><C/>", {"more than one element is the root"}},
    {"NoRoot", "text", {"no element begins", "text stands outside of every element"}},
    {"Nothing", "", {"no element begins"}},
    {"NoName", "<A><1>t</1></A>", {"'</1>' is no tag of XML", "'<1>' is no tag of XML"}},
    {"EmptyName", "<A><></A>", {"'<>' is no tag of XML", "<> is never closed"}},
    {"BareAttribute", "<A b></A>", {"'<A b>' is no tag of XML"}},
    {"UnquotedAttribute", "<A b=1></A>", {"'<A b=1>' is no tag of XML"}},
    {"OpenAttribute", R"(<A b="1></A>)", {R"('<A b="1>' is no tag of XML)"}},
    {"AttributesWithoutABlank", R"(<A b="1"c="2"></A>)", {R"('<A b="1"c="2">' is no tag of XML)"}},
    {"AttributeOfAnEndTag", R"(<A></A b="1">)", {R"('</A b="1">' is no tag of XML)"}},
    {"BlankBehindAName", "<A ></A >", {}},
    {"CutOff", "<A></A", {"'</A' is no tag of XML"}},
    {"CutComment", "<A><!-- x > y --></A>", {"'<!-- x >' is no tag of XML"}},
    {"CutInstruction", "<A><?x></A>", {"'<?x>' is no tag of XML"}},
    {"CutSection", "<A><![CDATA[x>]]></A>", {"'<![CDATA[x>' is no tag of XML"}},
    {"Section", "<A><![CDATA[x]]></A>", {}},
    {"VendorTags", "<A><X.Y>1</X.Y><B.C/></A>", {"tags of a vendor's own: B.C, X.Y"}},
    {"BeyondASCII", "<É.é>1</É.é>", {"tags of a vendor's own: É.é"}},
};

TEST(RemarksOnTags, TellsEachKindOfFault) {
  for (const RemarkCase& each : kRemarks)
    EXPECT_EQ(remarksOnTags(each.xml), each.remarks) << each.name;
}

TEST(RemarksOnTags, TakesAMillionNestedTags) {
  std::string xml;
  for (int i = 0; i < 1'000'000; ++i) xml += "<A>";
  EXPECT_EQ(remarksOnTags(xml), (Remarks{"<A> is never closed (1000000 times)"}));
  for (int i = 0; i < 1'000'000; ++i) xml += "</B>";
  EXPECT_EQ(remarksOnTags(xml), (Remarks{"</B> closes nothing (1000000 times)",
                                         "<A> is never closed (1000000 times)"}));
}

struct IndentCase {
  const char* name;
  const char* xml;
  const char* indented;
};
const IndentCase kIndents[] = {
    {"Leaf", "<A>t</A>", "<A>t</A>"},
    {"EmptyElement", "<A></A>", "<A></A>"},
    {"BlankText", "<A> </A>", "<A> </A>"},
    {"Nested", "<A><B>1</B><C/><D></D></A>", "<A>\n  <B>1</B>\n  <C/>\n  <D></D>\n</A>"},
    {"BlanksBetween", " <A> <B>1</B>\n\n</A> ", "<A>\n  <B>1</B>\n</A>"},
    {"TextBesideElements", "<A> one <B>1</B> two </A>", "<A>\n  one\n  <B>1</B>\n  two\n</A>"},
    {"Section", "<A><B>x<![CDATA[y]]> z</B></A>", "<A>\n  <B>x<![CDATA[y]]> z</B>\n</A>"},
    {"Others", "<!-- c --><A><?p i?></A>", "<!-- c -->\n<A>\n  <?p i?>\n</A>"},
    {"TooManyEnds", "</A></A><B/>", "</A>\n</A>\n<B/>"},
    {"NeverClosed", "<A><B>t", "<A>\n  <B>\n    t"},
    {"Text", "text", "text"},
    {"Nothing", "", ""},
};

TEST(IndentedXml, PutsElementsOnLines) {
  for (const IndentCase& each : kIndents)
    EXPECT_EQ(indentedXml(each.xml), each.indented) << each.name;
}

TEST(IndentedXml, GoesNoDeeperThan64Levels) {
  std::string xml;
  for (int i = 0; i < 100'000; ++i) xml += "<A>";
  EXPECT_LT(indentedXml(xml).size(), 100'000U * (3 + 1 + 128));
}

}  // namespace
