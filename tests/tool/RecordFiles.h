/// Tables that the tool turns into files of records.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

namespace orlftest {

using Words = std::vector<std::string>;

class RecordFiles : public orlftest::TemporaryFolderTest {
 protected:
  /// Runs a command over a table. What it writes is in `written()`.
  ToolRun run(const std::string& command, std::string_view table, const Words& options) {
    write("in.csv", table);
    Words words{command, path("in.csv"), "-o", path("out")};
    words.insert(words.end(), options.begin(), options.end());
    return runTool(words);
  }
  ToolRun qif(std::string_view table, Words options = {}) {
    options.insert(options.begin(), {"--account", "Main"});
    return run("qif", table, options);
  }
  /// A run that succeeds, and the file that it writes without its first five lines.
  std::string transactions(std::string_view table, const Words& options = {}) {
    const ToolRun ran = qif(table, options);
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    const std::string head = "!Account\nNMain\nTBank\n^\n!Type:Bank\n";
    EXPECT_TRUE(written().starts_with(head)) << written();
    return written().substr(head.size());
  }
  /// A run that fails and leaves no file; the last line of its errors, without the path.
  std::string fault(const ToolRun& ran, int exitCode = 1) {
    EXPECT_EQ(ran.exitCode, exitCode);
    EXPECT_EQ(names(), Words{"in.csv"});
    EXPECT_EQ(ran.out, "");
    std::string text = ran.err;
    if (text.ends_with('\n')) text.pop_back();
    text = text.substr(text.rfind('\n') + 1);
    const std::string file = path("in.csv");
    const std::size_t at = text.find(file);
    return at == text.npos ? text : text.replace(at, file.size(), "in.csv");
  }
  [[nodiscard]] std::string written() const { return read("out"); }
};

inline constexpr std::string_view kStatement =
    "Date,Description,Amount,Category,Memo\n"
    "12/24/2023,Grocer,\"-1,234.50\",Food/Out,weekly\n"
    "12/25/2023,Employer,2000,Pay:Main,\n";

}  // namespace orlftest
