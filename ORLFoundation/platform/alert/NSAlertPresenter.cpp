
#include <ORLFoundation/platform/alert/NSAlertPresenter.h>

#include <ORLFoundation/platform/alert/NSAlert.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string_view>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<NSAlertPresenter> presenters(
    []() -> std::shared_ptr<NSAlertPresenter> {
      return std::make_shared<NSTerminalAlertPresenter>();
    });

std::string textOf(const NSAlert& alert) {
  std::string text = alert.messageText();
  if (!alert.informativeText().empty()) text += "\n" + alert.informativeText();
  return text;
}

std::string numberedButtons(const NSAlert& alert) {
  std::string text;
  for (std::size_t i = 0; i < alert.buttons().size(); ++i)
    text += (i == 0 ? "[" : "  [") + std::to_string(i + 1) + "] " + alert.buttons()[i];
  return text + ": ";
}

void writeText(int output, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(output, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

/// A line without its end and without blanks around it; nil at the end of the input. The bytes are
/// read one by one, so that what follows the line is left to the program.
std::optional<std::string> readLine(int input) {
  std::string line;
  char byte = '\0';
  while (true) {
    const ssize_t count = ::read(input, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0 && line.empty()) return std::nullopt;
    if (count <= 0 || byte == '\n') break;
    line += byte;
  }
  line.erase(0, std::min(line.find_first_not_of(" \t\r"), line.size()));
  line.erase(line.find_last_not_of(" \t\r") + 1);
  return line;
}

bool beginsWithoutCase(std::string_view title, std::string_view text) {
  return !text.empty() && internal::base::equalsIgnoringCase(title.substr(0, text.size()), text);
}

/// The one button that a line names; nil when it names none or several.
std::optional<NSInteger> buttonNamed(const NSAlert& alert, std::string_view line) {
  std::optional<NSInteger> found;
  for (std::size_t i = 0; i < alert.buttons().size(); ++i) {
    if (line == std::to_string(i + 1)) return static_cast<NSInteger>(i);
    if (!beginsWithoutCase(alert.buttons()[i], line)) continue;
    if (found) return std::nullopt;
    found = static_cast<NSInteger>(i);
  }
  return found;
}

}  // namespace

NSInteger NSTerminalAlertPresenter::chooseButton(const NSAlert& alert) {
  if (::isatty(input_) == 0 || ::isatty(output_) == 0) {
    NSLog(textOf(alert));
    return 0;
  }
  const std::lock_guard guard(lock_);  // One question at a time.
  writeText(output_, textOf(alert) + "\n");
  while (true) {
    writeText(output_, numberedButtons(alert));
    const std::optional<std::string> line = readLine(input_);
    if (!line) return 0;
    if (const auto button = buttonNamed(alert, *line)) return *button;
  }
}

NSInteger NSScriptedAlertPresenter::chooseButton(const NSAlert& alert) {
  const std::lock_guard guard(lock_);
  std::string text = textOf(alert);
  for (const std::string& button : alert.buttons()) text += "\n" + button;
  shown_.push_back(std::move(text));
  return shown_.size() <= buttons_.size() ? buttons_[shown_.size() - 1] : 0;
}

std::vector<std::string> NSScriptedAlertPresenter::shown() const {
  const std::lock_guard guard(lock_);
  return shown_;
}

std::shared_ptr<NSAlertPresenter> NSCurrentAlertPresenter() { return presenters.current(); }

std::shared_ptr<NSAlertPresenter> NSSetAlertPresenter(std::shared_ptr<NSAlertPresenter> presenter) {
  return presenters.exchangeMade(std::move(presenter));
}

}  // namespace ORLFoundation
