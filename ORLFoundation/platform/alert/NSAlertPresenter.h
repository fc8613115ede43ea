/// How alerts reach people. A host with windows installs its own presenter; without one, alerts ask
/// on the terminal.
///
///     NSSetAlertPresenter(std::make_shared<WindowPresenter>(window));
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

class NSAlert;

class NSAlertPresenter {
 public:
  virtual ~NSAlertPresenter() = default;

  /// Shows the alert's texts and buttons, waits for an answer, and gives the index of the button.
  /// Runs on the thread that asks. An alert may come while another is shown.
  [[nodiscard]] virtual NSInteger chooseButton(const NSAlert& alert) = 0;
};

/// Asks on a terminal: prints the texts and the numbered buttons, and reads a line that names one
/// by its number, its title or the beginning of its title, capitals or not. It asks again after any
/// other line, and the end of the input is the first button. Where either descriptor is no terminal
/// there is no one to ask: it writes the texts to the log, and the answer is the first button.
class NSTerminalAlertPresenter final : public NSAlertPresenter {
 public:
  /// Standard input and standard error, unless others are given; they are not closed.
  explicit NSTerminalAlertPresenter(int input = 0, int output = 2)
      : input_(input), output_(output) {}

  [[nodiscard]] NSInteger chooseButton(const NSAlert& alert) override;

 private:
  const int input_;
  const int output_;
  std::recursive_mutex lock_;
};

/// Answers from a list, for tests: each alert takes the next answer, and the first button once the
/// list has come to its end. Safe on any thread.
class NSScriptedAlertPresenter final : public NSAlertPresenter {
 public:
  explicit NSScriptedAlertPresenter(std::vector<NSInteger> buttons)
      : buttons_(std::move(buttons)) {}

  [[nodiscard]] NSInteger chooseButton(const NSAlert& alert) override;
  /// What was shown so far: for each alert its texts and buttons, one to a line.
  [[nodiscard]] std::vector<std::string> shown() const;

 private:
  mutable std::mutex lock_;
  const std::vector<NSInteger> buttons_;
  std::vector<std::string> shown_;
};

/// The presenter in use, never null.
[[nodiscard]] std::shared_ptr<NSAlertPresenter> NSCurrentAlertPresenter();
/// Replaces the presenter and gives back the one before it; null stands for the terminal. Safe on
/// any thread.
std::shared_ptr<NSAlertPresenter> NSSetAlertPresenter(std::shared_ptr<NSAlertPresenter> presenter);

}  // namespace ORLFoundation
