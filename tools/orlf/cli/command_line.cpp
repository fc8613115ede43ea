#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <ostream>
#include <string_view>
#include <utility>

namespace orlftool {
namespace {

CLI::Option* add(CLI::App& parser, const std::string& name, const std::string& help,
                 CLI::callback_t take) {
  return parser.add_option(name, std::move(take), help)->type_name("TEXT");
}

/// The parser takes a text in brackets apart as a list, "-.5" for an option, and the next word for
/// the value of "--option=". A byte that no argument holds, put into them, keeps them whole.
constexpr char kGuard = '\0';

std::string guarded(std::string word) {
  const bool isInBrackets = word.starts_with('[') && word.ends_with(']');
  const bool isWithoutValue = word.starts_with("--") && word.ends_with('=');
  if (isInBrackets || isWithoutValue) word += kGuard;
  if (word.starts_with("-.")) word.insert(0, 1, kGuard);
  return word;
}

std::string unguarded(std::string word) {
  std::erase(word, kGuard);
  return word;
}

/// What the parser gets, last word first. After "--" come arguments alone, whatever they look like.
std::vector<std::string> reversedWords(const std::vector<std::string>& words) {
  std::vector<std::string> reversed;
  bool isArgument = false;
  for (const std::string& word : words) {
    const bool isMark = !isArgument && word == "--";
    if (!isMark) reversed.push_back(isArgument ? kGuard + word : guarded(word));
    isArgument = isArgument || isMark;
  }
  std::reverse(reversed.begin(), reversed.end());
  return reversed;
}

/// Takes the only text of an option into a value.
template <class Text>
CLI::callback_t into(Text& value) {
  return [&value](const CLI::results_t& texts) {
    value = texts.empty() ? std::string() : unguarded(texts.front());
    return true;
  };
}

CLI::callback_t intoList(std::vector<std::string>& values) {
  return [&values](const CLI::results_t& texts) {
    values.clear();
    std::transform(texts.begin(), texts.end(), std::back_inserter(values), unguarded);
    return true;
  };
}

}  // namespace

void Options::describe(const std::string& text) { parser_.description(text); }

void Options::flag(const std::string& name, bool& value, const std::string& help) {
  parser_.add_flag_callback(
      name, [&value] { value = true; }, help);
}

void Options::text(const std::string& name, std::string& value, const std::string& help) {
  add(parser_, name, help, into(value))->default_str(value);
}

void Options::text(const std::string& name, std::optional<std::string>& value,
                   const std::string& help) {
  add(parser_, name, help, into(value));
}

void Options::required(const std::string& name, std::string& value, const std::string& help) {
  add(parser_, name, help, into(value))->required();
}

void Options::list(const std::string& name, std::vector<std::string>& values,
                   const std::string& help) {
  add(parser_, name, help, intoList(values))
      ->expected(CLI::detail::expected_max_vector_size)
      ->delimiter(',');
}

void Options::each(const std::string& name, std::vector<std::string>& values,
                   const std::string& help) {
  add(parser_, name, help, intoList(values))
      ->expected(1, CLI::detail::expected_max_vector_size)
      ->allow_extra_args(false);
}

void Options::requiredList(const std::string& name, std::vector<std::string>& values,
                           const std::string& help) {
  add(parser_, name, help, intoList(values))
      ->expected(CLI::detail::expected_max_vector_size)
      ->required();
}

void Options::exclude(const std::string& first, const std::string& second) {
  parser_.get_option(first)->excludes(parser_.get_option(second));
}

CommandLine::CommandLine(const std::string& name, const std::string& description,
                         const std::string& version)
    : program_(std::make_unique<CLI::App>(description, name)) {
  program_->set_version_flag("--version", version);
  program_->require_subcommand(1);
}

CommandLine::~CommandLine() = default;

Options CommandLine::commonOptions() { return Options(*program_); }

Options CommandLine::addCommand(const std::string& name, const std::string& footer) {
  CLI::App* command = program_->add_subcommand(name);
  command->fallthrough();
  command->footer(footer);
  return Options(*command);
}

CommandLine::Reading CommandLine::read(const std::vector<std::string>& words, std::ostream& out) {
  try {
    program_->parse(reversedWords(words));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return {chosenCommand(), faultOf(error), false};
    program_->exit(error, out, out);
    return {chosenCommand(), "", true};
  }
  return {chosenCommand(), "", false};
}

std::string CommandLine::chosenCommand() const {
  const std::vector<CLI::App*> commands = program_->get_subcommands();
  return commands.empty() ? std::string() : commands.front()->get_name();
}

std::string CommandLine::faultOf(const std::exception& error) const {
  constexpr std::string_view kHint = " (--help tells more)";
  const std::vector<std::string> strangers = program_->remaining();
  const bool isUnknown = chosenCommand().empty() && !strangers.empty();
  const std::string fault =
      isUnknown ? "unknown command or option '" + unguarded(strangers.front()) + "'" : error.what();
  return fault + std::string(kHint);
}

}  // namespace orlftool
