// `orlf hash`, `orlf base64` and `orlf gzip`.
#include <gmock/gmock.h>

#include <string>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

namespace {

using orlftest::runTool;
using orlftest::ToolRun;
using testing::HasSubstr;

class SecurityCommands : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] std::string decoded(const std::string& text) const {
    const ToolRun run = runTool({"base64", "-d", write("text", text)});
    return run.exitCode == 0 ? run.out : run.err;
  }
};

TEST_F(SecurityCommands, PrintDigests) {
  const std::string empty = write("empty", ""), abc = write("abc", "abc");
  EXPECT_EQ(runTool({"hash", "md5", empty, abc}).out, "d41d8cd98f00b204e9800998ecf8427e  " + empty +
                                                          "\n900150983cd24fb0d6963f7d28e17f72  " +
                                                          abc + "\n");
  EXPECT_EQ(runTool({"hash", "sha1", abc}).out,
            "a9993e364706816aba3e25717850c26c9cd0d89d  " + abc + "\n");
  EXPECT_THAT(runTool({"hash", "sha1", abc, "--json"}).out,
              HasSubstr(R"("sha1": "a9993e364706816aba3e25717850c26c9cd0d89d")"));
  const ToolRun unknown = runTool({"hash", "sha256", abc});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_THAT(unknown.err, HasSubstr("expected md5 or sha1, got 'sha256'"));
  EXPECT_EQ(runTool({"hash", "md5", path("none")}).exitCode, 1);
}

TEST_F(SecurityCommands, WriteBase64InLinesAndInOne) {
  const std::string file = write("bytes", std::string(50, '\0'));
  EXPECT_EQ(runTool({"base64", file}).out, std::string(64, 'A') + "\r\nAAA=\n");
  EXPECT_EQ(runTool({"base64", "--one-line", file}).out, std::string(66, 'A') + "A=\n");
  EXPECT_EQ(runTool({"base64", write("empty", "")}).out, "");
  EXPECT_EQ(runTool({"base64", file, "-o", path("out")}).out, "");
  EXPECT_EQ(read("out"), std::string(64, 'A') + "\r\nAAA=\n");
  EXPECT_EQ(runTool({"base64", "-d", "--one-line", file}).exitCode, 2);
}

TEST_F(SecurityCommands, ReadBase64AndRefuseWhatIsNone) {
  // The library's reader would take a byte away for the line end.
  EXPECT_EQ(decoded("QUJD\n"), "ABC");
  EXPECT_EQ(decoded(" QU JD\r\n\tRA==\n"), "ABCD");
  EXPECT_EQ(decoded("QUI="), "AB");
  EXPECT_EQ(decoded(""), "");
  EXPECT_EQ(decoded(std::string(64, 'A') + "\r\nAAA=\n"), std::string(50, '\0'));
  EXPECT_THAT(decoded("QUJD\nQU*D"), HasSubstr("text:2: expected Base64, got '*'"));
  EXPECT_THAT(decoded("QQ==QQ=="), HasSubstr("expected Base64, got 'Q'"));
  for (const char* text : {"Q", "QU", "QUJ", "QUJDR", "Q===", "====", "QUJD="})
    EXPECT_THAT(decoded(text), HasSubstr("cut off")) << text;
}

TEST_F(SecurityCommands, CompressAndDecompress) {
  const std::string text(100'000, 'x');
  const std::string file = write("text", text);
  for (const char* level : {"--level=0", "--level=9", "--level=1"}) {
    EXPECT_EQ(runTool({"gzip", file, level, "-o", path("text.gz")}).exitCode, 0);
    EXPECT_EQ(runTool({"gzip", "-d", path("text.gz")}).out, text) << level;
  }
  EXPECT_EQ(runTool({"gzip", file}).out.substr(0, 2), "\x1f\x8b");
  EXPECT_THAT(runTool({"gzip", write("empty", "")}).err, HasSubstr("nothing to compress"));
  const std::string packed = read("text.gz");
  write("cut", packed.substr(0, packed.size() / 2));
  const ToolRun cut = runTool({"gzip", "-d", path("cut")});
  EXPECT_EQ(cut.exitCode, 1);
  EXPECT_EQ(cut.out, "");
  EXPECT_THAT(cut.err, HasSubstr("is damaged or cut off"));
  write("two", packed + packed);
  const ToolRun two = runTool({"gzip", "-d", path("two")});
  EXPECT_EQ(two.exitCode, 1);
  EXPECT_EQ(two.out, "");
  EXPECT_THAT(two.err, HasSubstr(std::to_string(packed.size()) + " bytes stand behind"));
  write("filled", packed + std::string(100, '\0'));
  EXPECT_EQ(runTool({"gzip", "-d", path("filled")}).out, text);
  EXPECT_EQ(runTool({"gzip", file, "--level=10"}).exitCode, 2);
  EXPECT_EQ(runTool({"gzip", "-d", file, "--level=1"}).exitCode, 2);
}

}  // namespace
