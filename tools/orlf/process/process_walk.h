/// A walk through a process by commands, from a terminal or a pipe.
#pragma once

#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orlftool {

struct Session;

/// One line of commands, at most so many bytes of it; nil at the end of the input.
struct CommandLineOfWalk {
  std::string text;
  bool isTooLong = false;
};
[[nodiscard]] std::optional<CommandLineOfWalk> readCommandLine(std::istream& in);

class ProcessWalk {
 public:
  /// On a terminal there is a prompt, and what is refused is answered there; from a pipe commands
  /// are shown before their answers, and what is refused is noted with its line on the error output
  /// and ends the tool with 1.
  ProcessWalk(Session& session, std::shared_ptr<ORLFoundation::ORLFProcessStep> root,
              bool isTerminal);
  ~ProcessWalk();
  ProcessWalk(const ProcessWalk&) = delete;
  ProcessWalk& operator=(const ProcessWalk&) = delete;

  /// Starts the process, shows its step and does what the lines say, to "quit" or their end.
  void run(std::istream& commands);

 private:
  class Listener;
  struct Command;
  using Argument = const std::string&;

  static std::span<const Command> commands();
  /// Null where there is none of the name.
  static const Command* commandNamed(std::string_view name);
  /// false at "quit".
  bool obey(const std::string& line);
  void choose(Argument line);
  void start(Argument argument);
  void advance(Argument transition);
  void jump(Argument path);
  void back(Argument argument);
  void forward(Argument argument);
  void clearHistory(Argument argument);
  void showHistory(Argument argument);
  void showStep(Argument argument);
  void showHelp(Argument argument);
  void showTransitions();
  void showWays();
  void arriveOrRefuse(const std::shared_ptr<ORLFoundation::ORLFProcessStep>& step,
                      std::string_view reason);
  [[nodiscard]] std::string targetOf(const std::string& transition);
  void refuse(const std::string& reason);

  Session& session_;
  const bool isTerminal_;
  ORLFoundation::ORLFProcess process_;
  std::shared_ptr<Listener> listener_;
  std::size_t line_ = 0;
};

/// Walks a definition's process by the standard input. Throws JobFailure where there is none.
void walkProcessFile(Session& session, const std::string& path);

}  // namespace orlftool
