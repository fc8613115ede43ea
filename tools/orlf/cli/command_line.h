/// The command line as commands see it: each declares the words that it takes and where their texts
/// go. The parser behind it is all templates and stands in one source.
///
///     Job declareRoundCommand(Options& options) {
///       options.describe("Round a decimal and print it.");
///       auto arguments = std::make_shared<RoundArguments>();
///       options.required("VALUE", arguments->value, "Decimal");
///       options.text("--mode", arguments->mode, "plain, down, up or bankers");
///       return [arguments](Session& session) { ... };
///     }
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace orlftool {

/// What one command takes. A name in dashes is an option, another one an argument by its place.
/// Values are texts as they were typed, and stay as they are for what was not given; they must live
/// until the line has been read.
class Options {
 public:
  explicit Options(CLI::App& parser) : parser_(parser) {}

  /// What the command does, for its help.
  void describe(const std::string& text);
  /// Turns true where the option is given.
  void flag(const std::string& name, bool& value, const std::string& help);
  /// Help shows the text that is there already as the one that holds where none is given.
  void text(const std::string& name, std::string& value, const std::string& help);
  void text(const std::string& name, std::optional<std::string>& value, const std::string& help);
  void required(const std::string& name, std::string& value, const std::string& help);
  /// As many texts as are given, with blanks or commas between them.
  void list(const std::string& name, std::vector<std::string>& values, const std::string& help);
  /// One text each time that the option is given, whatever stands in it.
  void each(const std::string& name, std::vector<std::string>& values, const std::string& help);
  /// At least one text, with blanks between them.
  void requiredList(const std::string& name, std::vector<std::string>& values,
                    const std::string& help);
  /// Refuses two of the command's options that are both given.
  void exclude(const std::string& first, const std::string& second);

 private:
  CLI::App& parser_;
};

/// A program with options of its own and one command, which takes the program's options too.
class CommandLine {
 public:
  CommandLine(const std::string& name, const std::string& description, const std::string& version);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// The options that work before and after a command's name.
  [[nodiscard]] Options commonOptions();
  /// Help of the command ends with the footer.
  [[nodiscard]] Options addCommand(const std::string& name, const std::string& footer);

  struct Reading {
    std::string command;      // the one that was named, empty for none
    std::string fault;        // what is wrong with the line, in one line; empty for nothing
    bool isAnswered = false;  // help or the version was asked for, and printed
  };
  /// Reads the words after the program's name.
  [[nodiscard]] Reading read(const std::vector<std::string>& words, std::ostream& out);

 private:
  [[nodiscard]] std::string chosenCommand() const;
  [[nodiscard]] std::string faultOf(const std::exception& error) const;

  std::unique_ptr<CLI::App> program_;
};

}  // namespace orlftool
