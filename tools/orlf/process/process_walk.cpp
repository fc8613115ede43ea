#include "process/process_walk.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iostream>
#include <vector>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "process/process_file.h"
#include "session.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Step = std::shared_ptr<ORLFProcessStep>;

constexpr std::size_t kMostBytesOfALine = 4096;

std::string inQuotes(std::string_view text) { return '"' + oneLine(text) + '"'; }

std::vector<std::string> transitionsOf(const ORLFProcessStep& step) {
  return step.possibleTransitions().value_or(std::vector<std::string>());
}

}  // namespace

/// Knows how the process ended.
class ProcessWalk::Listener final : public ORLFProcessDelegate {
 public:
  std::optional<std::string> outcome;
  bool hasEnded = false;

  void orlfProcessDidEndProcessWithTransition(ORLFProcess& /*process*/, Transition response,
                                              const id& /*data*/) override {
    hasEnded = true;
    outcome = response ? std::optional<std::string>(*response) : std::nullopt;
  }
};

struct ProcessWalk::Command {
  std::string_view name;
  std::string_view argument;  // its name in the help, empty for none
  void (ProcessWalk::*act)(Argument argument);
  std::string_view help;
};

std::span<const ProcessWalk::Command> ProcessWalk::commands() {
  static constexpr Command kCommands[] = {
      {"go", "NAME", &ProcessWalk::advance,
       "advance by a transition, also one that the step does not have"},
      {"back", "", &ProcessWalk::back, "to the step before"},
      {"forward", "", &ProcessWalk::forward, "to the step that was left by back"},
      {"jump", "PATH", &ProcessWalk::jump, "to a step, by names from the process's own step down"},
      {"where", "", &ProcessWalk::showStep, "show the step again"},
      {"history", "", &ProcessWalk::showHistory, "show the steps so far, > at the present one"},
      {"clear", "", &ProcessWalk::clearHistory, "forget the history"},
      {"run", "", &ProcessWalk::start, "begin anew after the end"},
      {"help", "", &ProcessWalk::showHelp, "show this"},
      {"quit", "", nullptr, "leave"},
  };
  return kCommands;
}

const ProcessWalk::Command* ProcessWalk::commandNamed(std::string_view name) {
  for (const Command& command : commands())
    if (command.name == name) return &command;
  return nullptr;
}

ProcessWalk::ProcessWalk(Session& session, Step root, bool isTerminal)
    : session_(session),
      isTerminal_(isTerminal),
      process_(std::move(root)),
      listener_(std::make_shared<Listener>()) {
  process_.setDelegate(listener_);
}

ProcessWalk::~ProcessWalk() = default;

std::optional<CommandLineOfWalk> readCommandLine(std::istream& in) {
  CommandLineOfWalk line;
  bool isAny = false;
  for (char c = 0; in.get(c) && c != '\n';) {
    isAny = true;
    line.isTooLong = line.isTooLong || line.text.size() >= kMostBytesOfALine;
    if (!line.isTooLong) line.text += c;
  }
  if (in.eof() && !isAny) return std::nullopt;
  line.text = std::string(trimmed(line.text));
  return line;
}

void ProcessWalk::run(std::istream& commands) {
  start({});
  while (true) {
    if (isTerminal_) session_.out << "> ";
    session_.out.flush();
    const auto line = readCommandLine(commands);
    if (!line) break;
    ++line_;
    if (line->isTooLong) {
      refuse("a line of more than " + std::to_string(kMostBytesOfALine) + " bytes is no command");
    } else if (!line->text.empty()) {
      if (!isTerminal_) session_.out << "\n> " << oneLine(line->text) << '\n';
      if (!obey(line->text)) return;
    }
  }
  if (isTerminal_) session_.out << '\n';
}

void ProcessWalk::refuse(const std::string& reason) {
  if (isTerminal_) {
    session_.out << oneLine(reason) << '\n';
    return;
  }
  const std::string place = line_ == 0 ? "" : "line " + std::to_string(line_) + ": ";
  printNote(session_, place + reason);
  session_.exitCode = kExitFailedJob;
}

bool ProcessWalk::obey(const std::string& line) {
  const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
  const std::string name = line.substr(0, end);
  const std::string argument(trimmed(std::string_view(line).substr(end)));
  const Command* const command = commandNamed(name);
  const bool takesOne = command != nullptr && !command->argument.empty();
  if (command == nullptr || (!takesOne && !argument.empty())) {
    choose(line);
  } else if (takesOne && argument.empty()) {
    refuse(name + " takes a " + std::string(command->argument));
  } else if (command->act == nullptr) {
    return false;
  } else {
    (this->*command->act)(argument);
  }
  return true;
}

/// A transition by its name or by its number in the list.
void ProcessWalk::choose(Argument line) {
  const Step step = process_.currentStep();
  const auto names = step ? transitionsOf(*step) : std::vector<std::string>();
  if (std::find(names.begin(), names.end(), line) != names.end()) return advance(line);
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  const bool isNumber = error == std::errc() && end == line.data() + line.size();
  if (isNumber && number >= 1 && number <= names.size()) return advance(names[number - 1]);
  refuse(quotedForMessage(line) + " is no command" +
         (step ? " and no transition of the step" : ", and no step is current") +
         "; help tells the commands");
}

void ProcessWalk::start(Argument) {
  if (process_.currentStep()) return refuse("the process is running; where shows its step");
  if (process_.run()) return showStep({});
  refuse("the process has no initial step; orlf process check tells why");
}

void ProcessWalk::advance(Argument transition) {
  if (!process_.currentStep()) return refuse("no step is current; run begins anew");
  listener_->hasEnded = false;
  if (process_.advanceWithTransition(transition, nullptr)) return showStep({});
  if (!listener_->hasEnded)
    return refuse(quotedForMessage(transition) +
                  " leads to a step that does not exist: no step is current now; run begins anew");
  session_.out << "The process has ended";
  if (listener_->outcome) session_.out << " with " << inQuotes(*listener_->outcome);
  session_.out << ".\n";
}

void ProcessWalk::arriveOrRefuse(const Step& step, std::string_view reason) {
  if (step) return showStep({});
  refuse(std::string(reason));
}

void ProcessWalk::jump(Argument path) {
  arriveOrRefuse(process_.jumpToStep(path, nullptr), "there is no step " + quotedForMessage(path));
}

void ProcessWalk::back(Argument) {
  if (!process_.canBack()) return refuse("there is no step to go back to");
  arriveOrRefuse(process_.back(), "the process had ended before: there is no way back");
}

void ProcessWalk::forward(Argument) {
  if (!process_.canForward()) return refuse("there is no step to go forward to");
  arriveOrRefuse(process_.forward(), "the process ended then: there is no step to show");
}

void ProcessWalk::clearHistory(Argument) {
  process_.clearHistory();
  showHistory({});
}

void ProcessWalk::showHistory(Argument) {
  const ORLFProcess::History& history = process_.history();
  if (history.empty()) session_.out << "  nothing\n";
  for (std::size_t i = 0; i < history.size(); ++i)
    session_.out << (i + 1 == process_.historyIndex() ? "> " : "  ")
                 << (history[i] ? oneLine(*history[i]) : "(no step)") << '\n';
}

void ProcessWalk::showHelp(Argument) {
  session_.out << "  NAME or number  advance by a transition of the step\n";
  for (const Command& command : commands()) {
    std::string usage = std::string(command.name);
    if (!command.argument.empty()) usage += " " + std::string(command.argument);
    usage.resize(std::max<std::size_t>(usage.size(), 16), ' ');
    session_.out << "  " << usage << command.help << '\n';
  }
}

void ProcessWalk::showStep(Argument) {
  const Step step = process_.currentStep();
  if (!step) return refuse("no step is current; run begins anew");
  const auto note = noteOf(*step);
  session_.out << oneLine(step->fullIdentifier());
  if (note && note->type) session_.out << "  (" << oneLine(*note->type) << ')';
  session_.out << '\n';
  if (note)
    for (const auto& [key, value] : note->properties)
      session_.out << "  " << oneLine(key) << " = " << oneLine(value) << '\n';
  showTransitions();
  showWays();
}

void ProcessWalk::showTransitions() {
  const auto names = transitionsOf(*process_.currentStep());
  for (std::size_t i = 0; i < names.size(); ++i)
    session_.out << "  " << i + 1 << ' ' << oneLine(names[i]) << ": " << targetOf(names[i]) << '\n';
  if (names.empty()) session_.out << "  no transitions\n";
}

void ProcessWalk::showWays() {
  if (process_.canBack()) session_.out << "  back is possible\n";
  if (process_.canForward()) session_.out << "  forward is possible\n";
}

std::string ProcessWalk::targetOf(const std::string& transition) {
  constexpr std::int32_t kEnded = 2;
  const Step from = process_.currentStep();
  std::int32_t result = 1;
  const Step target = process_.advanceFromStep(from, transition, nullptr, result);
  if (target) return "to " + oneLine(target->fullIdentifier());
  if (result != kEnded) return "to a step that does not exist";
  const auto response = from->responseForTransition(transition);
  return "ends the process" + (response ? " with " + inQuotes(*response) : "");
}

void walkProcessFile(Session& session, const std::string& path) {
  const Step root = readProcessFile(path);
  ProcessWalk walk(session, root, ::isatty(STDIN_FILENO) != 0);
  walk.run(std::cin);
}

}  // namespace orlftool
