
#include <ORLFoundation/platform/alert/NSAlertPresenter.h>

#include <ORLFoundation/platform/alert/NSAlert.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const NSAlert& question() {
  static const NSAlert alert("The following error occurred:", "count > 0\n\n[A run] at y.m:7",
                             {"Quit", "Continue"});
  return alert;
}

/// A terminal whose user types a text before anything is asked. What is typed does not show.
class Terminal {
 public:
  explicit Terminal(std::string_view typed) {
    EXPECT_EQ(::openpty(&user_, &program_, nullptr, nullptr, nullptr), 0);
    termios modes{};
    EXPECT_EQ(::tcgetattr(program_, &modes), 0);
    modes.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    EXPECT_EQ(::tcsetattr(program_, TCSANOW, &modes), 0);
    EXPECT_EQ(::write(user_, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
  }
  ~Terminal() {
    ::close(user_);
    ::close(program_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  [[nodiscard]] int descriptor() const { return program_; }
  /// What stands on the screen, as soon as it ends with a text; at the latest after ten seconds
  /// without anything new.
  [[nodiscard]] std::string screenUntil(std::string_view end) const {
    std::string text;
    std::array<char, 4096> buffer{};
    pollfd waiting{user_, POLLIN, 0};
    while (!text.ends_with(end) && ::poll(&waiting, 1, 10000) > 0) {
      const ssize_t count = ::read(user_, buffer.data(), buffer.size());
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  int user_ = -1;
  int program_ = -1;
};

NSInteger answerTo(std::string_view typed) {
  const Terminal terminal(typed);
  NSTerminalAlertPresenter presenter(terminal.descriptor(), terminal.descriptor());
  return presenter.chooseButton(question());
}

struct AnswerCase {
  std::string_view name, typed;
  NSInteger button;
};
const AnswerCase kAnswers[] = {
    {"FirstNumber", "1\n", 0},     {"SecondNumber", "2\n", 1},
    {"Title", "Continue\n", 1},    {"BeginningWithoutCapitals", "cont\n", 1},
    {"BlanksAround", "  q \n", 0}, {"AsksAgainAfterOtherLines", "3\nmaybe\n\n2\n", 1},
    {"EndOfInput", "\x04", 0},     {"EndOfInputAfterOtherLines", "maybe\n\x04", 0},
};

TEST(NSTerminalAlertPresenter, ReadsAnAnswer) {
  for (const AnswerCase& row : kAnswers) EXPECT_EQ(answerTo(row.typed), row.button) << row.name;
}

TEST(NSTerminalAlertPresenter, ShowsTextsAndButtons) {
  const Terminal terminal("2\n");
  LogCapture log;
  NSTerminalAlertPresenter presenter(terminal.descriptor(), terminal.descriptor());
  EXPECT_EQ(presenter.chooseButton(question()), 1);
  const std::string buttons = "[1] Quit  [2] Continue: ";
  EXPECT_EQ(terminal.screenUntil(buttons),
            "The following error occurred:\r\ncount > 0\r\n\r\n[A run] at y.m:7\r\n" + buttons);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(NSTerminalAlertPresenter, LeavesFurtherInputToTheProgram) {
  const Terminal terminal("2\nnext\n");
  NSTerminalAlertPresenter presenter(terminal.descriptor(), terminal.descriptor());
  EXPECT_EQ(presenter.chooseButton(question()), 1);
  std::array<char, 16> rest{};
  EXPECT_EQ(::read(terminal.descriptor(), rest.data(), rest.size()), 5);
  EXPECT_STREQ(rest.data(), "next\n");
}

TEST(NSTerminalAlertPresenter, LogsAndTakesTheFirstButtonWithNoOneToAsk) {
  const Terminal terminal("2\n");
  const int nothing = ::open("/dev/null", O_RDWR);
  for (const auto& [input, output] :
       {std::pair(nothing, nothing), std::pair(terminal.descriptor(), nothing),
        std::pair(nothing, terminal.descriptor())}) {
    LogCapture log;
    NSTerminalAlertPresenter presenter(input, output);
    EXPECT_EQ(presenter.chooseButton(question()), 0);
    EXPECT_THAT(log.lines(), ElementsAre("The following error occurred:\ncount > 0\n\n"
                                         "[A run] at y.m:7"));
  }
  ::close(nothing);
}

TEST(NSSetAlertPresenter, NullStandsForTheTerminal) {
  const auto scripted = std::make_shared<NSScriptedAlertPresenter>(std::vector<NSInteger>{});
  const Replaced presenter(NSSetAlertPresenter, scripted);
  ASSERT_NE(presenter.before(), nullptr);
  EXPECT_EQ(NSCurrentAlertPresenter(), scripted);
  EXPECT_EQ(NSSetAlertPresenter(nullptr), scripted);
  EXPECT_NE(dynamic_cast<NSTerminalAlertPresenter*>(NSCurrentAlertPresenter().get()), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
