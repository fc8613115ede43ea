#include "io/secret_input.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/failure.h"

namespace orlftool {
namespace {

constexpr std::size_t kMostSecretBytes = 65536;
/// Ctrl-C as the terminal sends it.
constexpr char kInterrupt = 3;

/// A file that is closed at the end; negative where it cannot be opened.
class Descriptor {
 public:
  Descriptor(const char* path, int flags) : number_(::open(path, flags | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int number() const noexcept { return number_; }

 private:
  const int number_;
};

/// Reads up to the end, or to the end of a line, into one piece of memory that never moves.
Secret readBytes(int descriptor, const std::string& name, bool isOneLine) {
  Secret room(std::string(kMostSecretBytes + 1, '\0'));
  char* const bytes = const_cast<char*>(room.text().data());
  std::size_t count = 0;
  while (count <= kMostSecretBytes) {
    const ssize_t got =
        ::read(descriptor, bytes + count, isOneLine ? 1 : kMostSecretBytes + 1 - count);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw JobFailure(name + ": " + std::strerror(errno));
    if (got == 0) break;
    count += static_cast<std::size_t>(got);
    if (isOneLine && (bytes[count - 1] == '\n' || bytes[count - 1] == kInterrupt)) break;
  }
  if (count > kMostSecretBytes)
    throw JobFailure(name + ": expected a secret of at most 64 KB, got more");
  return Secret(std::string(bytes, count));
}

/// Without the line end at its end; not empty.
Secret withoutLineEnd(const Secret& given, const std::string& name) {
  std::string_view text = given.text();
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  if (text.empty()) throw JobFailure(name + ": expected a secret, got nothing");
  return Secret(std::string(text));
}

/// While it lives, the terminal does not show what is typed, and ends the line at Ctrl-C.
class SilentTerminal {
 public:
  explicit SilentTerminal(int descriptor) : descriptor_(descriptor) {
    if (::tcgetattr(descriptor_, &before_) != 0)
      throw JobFailure(std::string("the terminal: ") + std::strerror(errno));
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ISIG);
    silent.c_lflag |= ICANON;
    silent.c_cc[VEOL] = kInterrupt;
    if (::tcsetattr(descriptor_, TCSAFLUSH, &silent) != 0)
      throw JobFailure(std::string("the terminal: ") + std::strerror(errno));
  }
  ~SilentTerminal() { ::tcsetattr(descriptor_, TCSAFLUSH, &before_); }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  const int descriptor_;
  termios before_{};
};

void show(int descriptor, std::string_view text) {
  if (::write(descriptor, text.data(), text.size()) < 0)
    throw JobFailure(std::string("the terminal: ") + std::strerror(errno));
}

Secret askAtTerminal(std::string_view prompt) {
  const Descriptor terminal("/dev/tty", O_RDWR);
  if (terminal.number() < 0)
    throw UsageFailure(
        "there is no terminal to ask for the password: give --password-file FILE, or - for the "
        "standard input");
  const SilentTerminal silent(terminal.number());
  show(terminal.number(), std::string(prompt) + ": ");
  const Secret line = readBytes(terminal.number(), "the terminal", true);
  show(terminal.number(), "\n");
  if (line.text().ends_with(kInterrupt)) throw JobFailure("interrupted");
  return withoutLineEnd(line, "the terminal");
}

Secret readFile(const std::string& path) {
  if (path == "-")
    return withoutLineEnd(readBytes(STDIN_FILENO, "standard input", false), "standard input");
  const Descriptor file(path.c_str(), O_RDONLY);
  if (file.number() < 0) throw JobFailure(path + ": " + std::strerror(errno));
  return withoutLineEnd(readBytes(file.number(), path, false), path);
}

}  // namespace

void Secret::wipe() noexcept {
  // Short texts stay in the object itself when it is moved from.
  text_.resize(text_.capacity());
  ::explicit_bzero(text_.data(), text_.size());
  text_.clear();
}

Secret readSecret(const std::optional<std::string>& path, std::string_view prompt) {
  return path ? readFile(*path) : askAtTerminal(prompt);
}

Secret readNewSecret(const std::optional<std::string>& path, std::string_view prompt) {
  if (path) return readFile(*path);
  Secret first = askAtTerminal(prompt);
  const Secret second = askAtTerminal(std::string(prompt) + " again");
  if (first.text() != second.text()) throw JobFailure("the two passwords differ");
  return first;
}

}  // namespace orlftool
