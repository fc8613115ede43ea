#include "io/secret_input.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "progress/progress_screen.h"

namespace orlftool {
namespace {

using ORLFoundation::internal::base::WipedBytes;

constexpr std::size_t kMostSecretBytes = std::size_t{64} << 10;

class OpenFile {
 public:
  explicit OpenFile(int number) : number_(number) {}
  ~OpenFile() {
    if (number_ > STDERR_FILENO) ::close(number_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

// What the signals' handler leaves, on whatever thread it runs.
std::atomic<int> caughtSignal{0};
std::atomic<int> signalsEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void keepSignal(int number) {
  const int before = errno;
  caughtSignal = number;
  static_cast<void>(!::write(signalsEnd, "", 1));
  errno = before;
}

/// Has the signals that end or stop a program end the waiting for input instead, for as long as it
/// lives. What came is sent again when the terminal is as it was.
class HeldSignals {
 public:
  HeldSignals() {
    // A pipe, since a signal may come to another thread than the one that waits.
    if (::pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    caughtSignal = 0;
    signalsEnd = ends_[1];
    struct sigaction action {};
    action.sa_handler = &keepSignal;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
      ::sigaction(kSignals[i], &action, &before_[i]);
  }
  ~HeldSignals() {
    if (!areHeld()) return;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
      ::sigaction(kSignals[i], &before_[i], nullptr);
    signalsEnd = -1;
    for (const int end : ends_) ::close(end);
    if (caughtSignal != 0) ::raise(caughtSignal);
  }
  [[nodiscard]] bool areHeld() const { return ends_[0] >= 0; }
  /// Waits until there is something to be read; false where a signal came first.
  [[nodiscard]] bool waitForInput(int file) const {
    std::array<pollfd, 2> polled{pollfd{file, POLLIN, 0}, pollfd{ends_[0], POLLIN, 0}};
    while (::poll(polled.data(), polled.size(), -1) < 0)
      if (errno != EINTR) return false;
    return caughtSignal == 0;
  }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  static constexpr std::array kSignals{SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP};
  std::array<struct sigaction, kSignals.size()> before_{};
  std::array<int, 2> ends_{-1, -1};
};

/// A terminal that does not show what is typed, for as long as it lives.
class SilentTerminal {
 public:
  explicit SilentTerminal(int terminal) : terminal_(terminal) {
    if (::tcgetattr(terminal_, &before_) != 0) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= ECHONL;
    isSilent_ = ::tcsetattr(terminal_, TCSAFLUSH, &silent) == 0;
  }
  ~SilentTerminal() {
    if (isSilent_) ::tcsetattr(terminal_, TCSAFLUSH, &before_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;
  [[nodiscard]] bool isSilent() const { return isSilent_; }

 private:
  const int terminal_;
  termios before_{};
  bool isSilent_ = false;
};

/// Reads to the end, or, of a terminal with its signals, to the end of the first line. No stream is
/// between that would keep a copy.
WipedBytes readBytes(int file, const std::string& name, const HeldSignals* signals = nullptr) {
  WipedBytes bytes;
  std::array<char, 512> piece{};
  std::string failure;
  const bool isLine = signals != nullptr;
  while (failure.empty()) {
    if (isLine && !signals->waitForInput(file)) throw JobFailure(name + ": interrupted");
    const ssize_t count = ::read(file, piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failure = std::strerror(errno);
    if (count <= 0) break;
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
    if (bytes.size() > kMostSecretBytes) failure = "expected a password, got more than 64 KB";
    if (isLine && bytes.back() == '\n') break;
  }
  explicit_bzero(piece.data(), piece.size());
  if (!failure.empty()) throw JobFailure(name + ": " + failure);
  if (isLine && bytes.empty()) throw JobFailure(name + ": nothing was typed");
  if (!bytes.empty() && bytes.back() == '\n') bytes.pop_back();
  if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
  return bytes;
}

WipedBytes ask(int terminal, const std::string& prompt) {
  const ProgressPause pause;
  const HeldSignals held;
  const SilentTerminal silent(terminal);
  if (!held.areHeld() || !silent.isSilent())
    throw JobFailure("the terminal cannot be kept from showing what is typed");
  const std::string shown = oneLine(prompt);
  if (::write(terminal, shown.data(), shown.size()) < 0)
    throw JobFailure(std::string("the terminal cannot be written to: ") + std::strerror(errno));
  return readBytes(terminal, "the terminal", &held);
}

/// Throws UsageFailure with a text of the caller where there is no terminal.
OpenFile openTerminal(const std::string& otherwise) {
  const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) throw UsageFailure(otherwise);
  return OpenFile(terminal);
}

Secret askForPassword(const SecretRequest& request) {
  const OpenFile terminal =
      openTerminal(std::string(request.option) +
                   " FILE is needed, or - for the standard input: there is no terminal to ask");
  WipedBytes typed = ask(terminal.number(), request.prompt);
  if (request.isNew && ask(terminal.number(), "Again: ") != typed)
    throw JobFailure("the two passwords differ");
  return Secret(std::move(typed));
}

}  // namespace

Secret askOnTerminal(const std::string& prompt, const std::string& otherwise) {
  const OpenFile terminal = openTerminal(otherwise);
  return Secret(ask(terminal.number(), prompt));
}

Secret readSecret(const SecretRequest& request) {
  if (!request.file) return askForPassword(request);
  if (*request.file == "-") return Secret(readBytes(STDIN_FILENO, "standard input"));
  const OpenFile file(::open(request.file->c_str(), O_RDONLY | O_CLOEXEC));
  if (file.number() < 0)
    throw JobFailure(*request.file + ": cannot be read: " + std::strerror(errno));
  return Secret(readBytes(file.number(), *request.file));
}

}  // namespace orlftool
