#include <fcntl.h>
#include <gmock/gmock.h>
#include <tests/support/TemporaryFolder.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <ostream>
#include <regex>
#include <streambuf>
#include <thread>

#include "tool.h"

namespace orlftool {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// What a command on another thread prints.
class Output final : public std::streambuf {
 public:
  /// Waits until so many lines have come.
  void waitForLines(std::ptrdiff_t count) {
    std::unique_lock guard(lock_);
    const bool hasCome = hasMore_.wait_for(guard, std::chrono::seconds(30), [&] {
      return std::count(text_.begin(), text_.end(), '\n') >= count;
    });
    EXPECT_TRUE(hasCome) << text_;
  }
  /// Without the times, of which all must be such.
  std::string events() {
    static const std::regex time(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?(Z|[+-]\d\d:\d\d))");
    const std::lock_guard guard(lock_);
    return std::regex_replace(text_, time, "T");
  }

 private:
  int_type overflow(int_type character) override {
    const std::lock_guard guard(lock_);
    text_ += traits_type::to_char_type(character);
    hasMore_.notify_all();
    return character;
  }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    const std::lock_guard guard(lock_);
    text_.append(text, static_cast<std::size_t>(count));
    hasMore_.notify_all();
    return count;
  }

  std::mutex lock_;
  std::condition_variable hasMore_;
  std::string text_;
};

class WatchCommand : public orlftest::TemporaryFolderTest {
 protected:
  WatchCommand() { write("file", "content"); }
  ~WatchCommand() override {
    if (thread_.joinable()) thread_.join();
  }
  void start(std::vector<std::string> arguments) {
    thread_ = std::thread([this, arguments = std::move(arguments)] {
      std::ostream out(&out_);
      std::ostream err(&err_);
      exitCode_ = runTool(arguments, out, err);
    });
  }
  /// All that was printed, when the command has ended.
  std::string end() {
    thread_.join();
    EXPECT_EQ(exitCode_, 0) << err_.events();
    return out_.events();
  }
  void saveAtomically() {
    write("new", "saved");
    fs::rename(path("new"), path("file"));
  }

  Output out_, err_;
  int exitCode_ = -1;
  std::thread thread_;
};

TEST_F(WatchCommand, TellsOfAFileUntilItsEnd) {
  start({"watch", path("file")});
  out_.waitForLines(1);
  saveAtomically();
  out_.waitForLines(2);
  const std::string place = fs::canonical(folder_) / "moved";
  fs::rename(path("file"), place);
  EXPECT_EQ(end(), "T started\nT changed\nT moved " + place + "\n");
}

TEST_F(WatchCommand, EndsWithTheFirstEventWhereItIsAskedTo) {
  start({"watch", path("file"), "--once"});
  out_.waitForLines(1);
  saveAtomically();
  EXPECT_EQ(end(), "T started\nT changed\n");
}

TEST_F(WatchCommand, PrintsAnObjectALine) {
  start({"watch", path("file"), "--json", "--tz", "America/New_York"});
  out_.waitForLines(1);
  fs::remove(path("file"));
  EXPECT_EQ(end(),
            "{\"time\":\"T\",\"event\":\"started\"}\n{\"time\":\"T\",\"event\":\"deleted\"}\n");
}

TEST_F(WatchCommand, TellsOfNamesInADirectory) {
  fs::create_directory(path("d"));
  start({"watch", "--directory", path("d")});
  out_.waitForLines(1);
  write("d/a", "");
  out_.waitForLines(2);
  fs::rename(path("d"), path("e"));
  EXPECT_EQ(end(),
            "T started\nT changed\nT moved " + (fs::canonical(folder_) / "e").string() + "\n");
}

TEST_F(WatchCommand, EndsOnceForADirectoryToo) {
  start({"watch", "--directory", folder_, "--once"});
  out_.waitForLines(1);
  write("a", "");
  EXPECT_EQ(end(), "T started\nT changed\n");
}

TEST_F(WatchCommand, SaysWhatItCannotWatch) {
  const auto fault = [](std::vector<std::string> arguments, int exitCode) {
    arguments.insert(arguments.begin(), "watch");
    std::ostringstream out, err;
    EXPECT_EQ(runTool(arguments, out, err), exitCode);
    EXPECT_EQ(out.str(), "");
    return err.str();
  };
  EXPECT_THAT(fault({path("nothing")}, 1), HasSubstr("nothing: No such file or directory"));
  EXPECT_THAT(fault({path("file/below")}, 1), HasSubstr("Not a directory"));
  EXPECT_THAT(fault({folder_}, 1), HasSubstr("watch it with --directory"));
  EXPECT_THAT(fault({"--directory", path("file")}, 1), HasSubstr("not a directory"));
  EXPECT_THAT(fault({"--directory", path("nothing")}, 1), HasSubstr("No such file"));
  EXPECT_THAT(fault({"/" + std::string(4096, 'a')}, 1), HasSubstr("File name too long"));
  EXPECT_THAT(fault({}, 2), HasSubstr("either FILE or --directory"));
  EXPECT_THAT(fault({path("file"), "--directory", folder_}, 2), HasSubstr("either FILE"));
  EXPECT_THAT(fault({""}, 2), HasSubstr("FILE: expected a path, got ''"));
  EXPECT_THAT(fault({"--directory", ""}, 2), HasSubstr("--directory: expected a path, got ''"));
  fs::create_symlink(path("round"), path("round"));
  EXPECT_THAT(fault({path("round")}, 1), HasSubstr("Too many levels of symbolic links"));
}

}  // namespace
}  // namespace orlftool
