#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/security/primitives/ORLFDataBase64.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/message_text.h"
#include "commands.h"
#include "io/atomic_file.h"
#include "io/input_file.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct Base64Arguments {
  std::string file = "-";
  std::optional<std::string> output;
  bool decode = false;
  bool oneLine = false;
};

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// The text without blanks and line ends. The library's reader passes over all that is no Base64;
/// here that is an error with its line, and so is a text that is cut off.
std::string cleanedText(const std::string& name, std::string_view text) {
  std::string clean;
  std::size_t line = 1;
  for (const char c : text) {
    if (c == '\n') ++line;
    if (isBlank(c)) continue;
    const bool isDigit = internal::base::base64DigitValue(c) >= 0;
    if ((!isDigit && c != '=') || (isDigit && clean.ends_with('=')))
      failAtField(name, line, "", "Base64", quotedForMessage(std::string_view(&c, 1)));
    clean += c;
  }
  const std::size_t digits = clean.find_last_not_of('=') + 1;
  if (clean.size() % 4 != 0 || clean.size() - digits > 2)
    throw JobFailure(name + ": the Base64 text is cut off");
  return clean;
}

void runBase64(Session& session, const Base64Arguments& arguments) {
  if (arguments.decode && arguments.oneLine)
    throw UsageFailure("--one-line goes with encoding, not with --decode");
  const std::string bytes = readInputFile(arguments.file, "a file");
  const std::string name = arguments.file == "-" ? "standard input" : arguments.file;
  std::string result;
  if (arguments.decode) {
    result = dataFromBase64String(cleanedText(name, bytes)).text();
  } else {
    result = base64EncodedStringWithLineBreaks(NSData(std::string_view(bytes)), !arguments.oneLine);
    if (!result.empty()) result += '\n';
  }
  if (arguments.output)
    writeFileAtomically(*arguments.output, std::string_view(result));
  else
    session.out << result;
}

}  // namespace

Job declareBase64Command(Options& options) {
  options.describe(
      "Print a file of at most 64 MB as Base64, in lines of 64 characters with CR LF between\n"
      "them, or with -d the bytes of such a text. Blanks and line ends in it are passed over.");
  auto arguments = std::make_shared<Base64Arguments>();
  options.text("FILE", arguments->file, "The file, - for the standard input");
  options.flag("-d,--decode", arguments->decode, "Print the bytes of a Base64 text");
  options.flag("--one-line", arguments->oneLine, "Print one line");
  options.text("-o,--output", arguments->output, "The file to be written");
  return [arguments](Session& session) { runBase64(session, *arguments); };
}

}  // namespace orlftool
