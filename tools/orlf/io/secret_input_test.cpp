#include "io/secret_input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "cli/failure.h"

namespace {

using orlftool::JobFailure;
using orlftool::readSecret;
using orlftool::UsageFailure;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

orlftool::Secret secretOf(const std::optional<std::string>& file, bool isNew = false) {
  return readSecret(
      {.option = "--password-file", .file = file, .prompt = "Password of bank: ", .isNew = isNew});
}

class SecretInput : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] std::string secretIn(std::string_view content) const {
    return std::string(secretOf(write("secret", content)).text());
  }
  [[nodiscard]] std::string faultOf(std::string_view content) const {
    try {
      return secretIn(content);
    } catch (const JobFailure& failure) {
      return failure.what();
    }
  }
};

TEST_F(SecretInput, IsAllOfAFileButOneLineEnd) {
  EXPECT_EQ(secretIn("pw"), "pw");
  EXPECT_EQ(secretIn("pw\n"), "pw");
  EXPECT_EQ(secretIn("pw\r\n"), "pw");
  EXPECT_EQ(secretIn("pw\n\n"), "pw\n");
  EXPECT_EQ(secretIn(" p w\t\n"), " p w\t");
  EXPECT_EQ(secretIn("gr\xc3\xbc\xc3\x9f\n"), "gr\xc3\xbc\xc3\x9f");
  EXPECT_EQ(secretIn(std::string_view("a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(secretIn(std::string(65536, 'x')).size(), 65536U);
  EXPECT_EQ(secretIn(""), "");
  EXPECT_EQ(secretIn("\r\n"), "");
}

TEST_F(SecretInput, RefusesWhatIsNoSecret) {
  EXPECT_THAT(faultOf(std::string(65537, 'x')), HasSubstr("got more than 64 KB"));
  EXPECT_THROW(static_cast<void>(secretOf(path("missing"))), JobFailure);
  EXPECT_THROW(static_cast<void>(secretOf(folder_.string())), JobFailure);
}

/// What one of both functions does in a process whose terminal is a new one: what it gave or why it
/// failed, and all that the terminal showed.
struct Session {
  std::string given, shown;
  int status = -1;  // of the process
  bool showedTyping = true;
  bool showsTypingAfterwards = false;
};

bool shows(int terminal) {
  termios modes{};
  return ::tcgetattr(terminal, &modes) == 0 && (modes.c_lflag & ECHO) != 0;
}

Session atTerminal(const std::vector<std::string>& typed,
                   const std::function<std::string()>& work) {
  int terminal = -1;
  int ends[2];
  if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    std::signal(SIGINT, SIG_DFL);  // a background job may be told to ignore it
    const std::string given = work();
    static_cast<void>(!::write(ends[1], given.data(), given.size()));
    char byte = 0;
    static_cast<void>(!::read(STDIN_FILENO, &byte, 1));  // the terminal lives until it was seen
    ::_exit(0);
  }
  ::close(ends[1]);
  Session session;
  std::array<char, 256> piece{};
  for (const std::string& line : typed) {
    while (!session.shown.ends_with(": ")) {
      const ssize_t count = ::read(terminal, piece.data(), piece.size());
      if (count <= 0) break;
      session.shown.append(piece.data(), static_cast<std::size_t>(count));
    }
    session.showedTyping = shows(terminal);
    static_cast<void>(!::write(terminal, line.data(), line.size()));
    session.shown += '|';
  }
  const ssize_t count = ::read(ends[0], piece.data(), piece.size());
  session.given.assign(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  session.showsTypingAfterwards = shows(terminal);
  static_cast<void>(!::write(terminal, "\n", 1));
  for (ssize_t more = 0; (more = ::read(terminal, piece.data(), piece.size())) > 0;)
    session.shown.append(piece.data(), static_cast<std::size_t>(more));
  ::close(ends[0]);
  ::close(terminal);
  ::waitpid(child, &session.status, 0);
  return session;
}

std::string outcome(const std::function<orlftool::Secret()>& read) {
  try {
    return std::string(read().text());
  } catch (const std::exception& failure) {
    return std::string("failed: ") + failure.what();
  }
}

TEST_F(SecretInput, IsTypedWithoutBeingShown) {
  const Session session =
      atTerminal({"s3cr3t word\n"}, [] { return outcome([] { return secretOf(std::nullopt); }); });
  EXPECT_EQ(session.given, "s3cr3t word");
  EXPECT_THAT(session.shown, StartsWith("Password of bank: |"));
  EXPECT_THAT(session.shown, Not(HasSubstr("s3cr3t")));
  EXPECT_FALSE(session.showedTyping);
  EXPECT_TRUE(session.showsTypingAfterwards);
}

TEST_F(SecretInput, IsAskedForTwiceWhenItIsNew) {
  const auto work = [] { return outcome([] { return secretOf(std::nullopt, true); }); };
  const Session same = atTerminal({"one\n", "one\n"}, work);
  EXPECT_EQ(same.given, "one");
  EXPECT_THAT(same.shown, HasSubstr("Again: "));
  EXPECT_EQ(atTerminal({"one\n", "two\n"}, work).given, "failed: the two passwords differ");
}

TEST_F(SecretInput, EndsAtCtrlCWithTheTerminalAsItWas) {
  const auto work = [] { return outcome([] { return secretOf(std::nullopt); }); };
  const Session session = atTerminal({"s3c\x03"}, work);
  EXPECT_EQ(session.given, "");
  EXPECT_TRUE(WIFSIGNALED(session.status));
  EXPECT_EQ(WTERMSIG(session.status), SIGINT);
  EXPECT_TRUE(session.showsTypingAfterwards);
  EXPECT_THAT(atTerminal({"\x04"}, work).given, HasSubstr("nothing was typed"));
  EXPECT_EQ(atTerminal({" \n"}, work).given, " ");
}

TEST_F(SecretInput, EndsAtCtrlCOnAnyThread) {
  const auto work = [] {
    std::string given;
    std::thread([&] { given = outcome([] { return secretOf(std::nullopt); }); }).join();
    return given;
  };
  const Session session = atTerminal({"s3c\x03"}, work);
  EXPECT_EQ(session.given, "");
  EXPECT_TRUE(WIFSIGNALED(session.status) && WTERMSIG(session.status) == SIGINT);
  EXPECT_TRUE(session.showsTypingAfterwards);
  EXPECT_EQ(atTerminal({"word\n"}, work).given, "word");
}

TEST_F(SecretInput, AsksForAnyLine) {
  const Session session = atTerminal({"Token: abc\n"}, [] {
    return outcome([] { return orlftool::askOnTerminal("Header: ", "no terminal"); });
  });
  EXPECT_EQ(session.given, "Token: abc");
  EXPECT_THAT(session.shown, Not(HasSubstr("abc")));
  EXPECT_FALSE(session.showedTyping);
}

TEST_F(SecretInput, SaysWhatToDoWithoutATerminal) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();  // no terminal any more
    try {
      static_cast<void>(secretOf(std::nullopt));
    } catch (const UsageFailure& failure) {
      ::_exit(std::string(failure.what()).find("--password-file") != std::string::npos ? 0 : 2);
    }
    ::_exit(1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
