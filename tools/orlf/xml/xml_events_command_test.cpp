#include <gtest/gtest.h>

#include <cstdio>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

namespace {

using orlftest::runTool;
using orlftest::ToolRun;

class XmlEvents : public orlftest::TemporaryFolderTest {};

/// Takes so many bytes and no more.
class SmallOutput : public std::streambuf {
 public:
  explicit SmallOutput(int room) : room_(room) {}

 protected:
  int_type overflow(int_type c) override { return room_-- > 0 ? c : traits_type::eof(); }

 private:
  int room_;
};

TEST_F(XmlEvents, EndWithTheOutput) {
  // What is wrong with the document is not reached any more.
  const std::string file = write("a.xml", "<a><b/><b/></c>");
  for (const char* form : {"--tz=UTC", "--json"}) {
    SmallOutput small(40);
    std::ostream out(&small);
    std::ostringstream err;
    EXPECT_EQ(orlftool::runTool({"xml-events", form, file}, out, err), 1) << form;
    EXPECT_EQ(err.str(), "orlf xml-events: the output cannot be written\n") << form;
  }
}

TEST_F(XmlEvents, EscapeWhatATerminalWouldObey) {
  const std::string file = write("a.xml", "<a b='&#x9B;2J\x7F'>\xC2\x9D;\xC2\xA0\xE2\x82\xAC</a>");
  const ToolRun run = runTool({"xml-events", file});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out,
            "start-document\nstart a b=\"\\u009b2J\\u007f\"\ntext \"\\u009d;\u00A0\u20AC\"\n"
            "end a\nend-document\n");
}

TEST_F(XmlEvents, OfABrokenDocumentAreAnArrayAllTheSame) {
  const ToolRun run = runTool({"xml-events", "--json", write("a.xml", "<a>x</b>")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.out.ends_with("  {\n    \"event\": \"text\",\n    \"text\": \"x\"\n  }\n]\n"))
      << run.out;
  const ToolRun none = runTool({"xml-events", "--json", write("b.xml", "")});
  EXPECT_EQ(none.out, "[]\n");
  EXPECT_TRUE(none.err.ends_with("b.xml:1:1: The document holds no element. (code 4)\n"))
      << none.err;
}

TEST_F(XmlEvents, NameTheStandardInputInMessages) {
  const std::string file = write("a.xml", "<a>\n</b>");
  ASSERT_NE(std::freopen(file.c_str(), "rb", stdin), nullptr);
  const ToolRun run = runTool({"xml-events", "-"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.err.starts_with("orlf xml-events: standard input:2:")) << run.err;
}

}  // namespace
