#include "web/fetch_headers.h"

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "cli/failure.h"
#include "io/input_file.h"
#include "io/text_lines.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

/// The terminal, which shows nothing of what is typed while this lives.
class SilentTerminal {
 public:
  SilentTerminal() : terminal_(::open("/dev/tty", O_RDWR | O_CLOEXEC)) {
    if (terminal_ < 0 || ::tcgetattr(terminal_, &before_) != 0) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    isSilent_ = ::tcsetattr(terminal_, TCSAFLUSH, &silent) == 0;
  }
  ~SilentTerminal() {
    if (isSilent_) ::tcsetattr(terminal_, TCSAFLUSH, &before_);
    if (terminal_ >= 0) ::close(terminal_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  [[nodiscard]] bool isSilent() const { return isSilent_; }
  [[nodiscard]] std::string line(std::string_view prompt) {
    show(prompt);
    std::string typed;
    for (char c = 0; ::read(terminal_, &c, 1) == 1 && c != '\n';) typed += c;
    show("\n");
    return typed;
  }

 private:
  void show(std::string_view text) {
    if (::write(terminal_, text.data(), text.size()) < 0) isSilent_ = false;
  }

  const int terminal_;
  termios before_{};
  bool isSilent_ = false;
};

std::string typedHeader(const std::string& option) {
  SilentTerminal terminal;
  if (!terminal.isSilent()) throw JobFailure(option + ": there is no terminal to ask at");
  return terminal.line("Header field (Name: value), which is not shown: ");
}

HeaderField readHeader(const std::string& option, std::string_view text) {
  const auto colon = text.find(':');
  HeaderField field;
  if (colon != std::string_view::npos) {
    field.name = trimmed(text.substr(0, colon));
    field.value = trimmed(text.substr(colon + 1));
  }
  if (ORLFoundation::NSIsHTTPToken(field.name) && ORLFoundation::NSIsHTTPFieldValue(field.value))
    return field;
  throw UsageFailure(option + ": expected a header field such as 'Accept: text/csv'");
}

}  // namespace

std::vector<HeaderField> readHeaders(const std::string& option,
                                     const std::vector<std::string>& texts) {
  std::vector<HeaderField> fields;
  for (const std::string& text : texts) {
    if (text == "-") {
      fields.push_back(readHeader(option, typedHeader(option)));
    } else if (text.starts_with('@')) {
      for (const std::string& line : linesOfText(readInputFile(text.substr(1), "a header file")))
        if (!trimmed(line).empty()) fields.push_back(readHeader(option, line));
    } else {
      fields.push_back(readHeader(option, text));
    }
  }
  return fields;
}

std::vector<std::string> secretsOf(const std::vector<HeaderField>& fields) {
  std::vector<std::string> secrets;
  for (const HeaderField& field : fields) {
    secrets.push_back(field.value);
    const auto blank = field.value.find_last_of(" =");
    if (blank != std::string::npos) secrets.push_back(field.value.substr(blank + 1));
  }
  return secrets;
}

}  // namespace orlftool
