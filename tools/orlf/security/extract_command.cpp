#include <ORLFoundation/platform/container/ArchiveError.h>
#include <ORLFoundation/security/archives/FoundationError.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "files/file_argument.h"
#include "io/secret_input.h"
#include "security/archive_task.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct ExtractArguments {
  std::string file, folder;
  std::optional<std::string> passwordFile;
  bool keepsOwners = false, keepsSetIDBits = false;
};

Secret askForPassword(const ExtractArguments& arguments) {
  return readSecret({.option = "--password-file",
                     .file = arguments.passwordFile,
                     .prompt = "Password of " + arguments.file + ": "});
}

void extractTo(const NSURL& file, const NSURL& folder, const ExtractArguments& arguments,
               const std::optional<Secret>& password) {
  AppleArchiveOptions wanted;
  wanted.keepsOwners = arguments.keepsOwners;
  wanted.keepsSetIDBits = arguments.keepsSetIDBits;
  runArchiveTask(
      [&](AppleArchiveOptions options) {
        if (!password) return AppleArchive::extract(file, folder, std::move(options));
        return AppleArchive::extract(file, folder, std::string(password->text()),
                                     std::move(options));
      },
      "Extracting " + arguments.file, std::move(wanted));
}

void extractArchive(Session& session, const ExtractArguments& arguments) {
  const NSURL file = fileURLOfArgument("FILE", arguments.file);
  const NSURL folder = fileURLOfArgument("DIR", arguments.folder);
  std::optional<Secret> password;
  if (arguments.passwordFile) password.emplace(askForPassword(arguments));
  try {
    try {
      extractTo(file, folder, arguments, password);
    } catch (const ArchiveError& failure) {
      const bool asks =
          isFoundationError(*failure.error(), FoundationError::archiveRequiresPassword);
      if (!asks || password) throw;
      password.emplace(askForPassword(arguments));
      extractTo(file, folder, arguments, password);
    }
  } catch (const ArchiveError& failure) {
    throw JobFailure(failure.what());
  }
  if (session.options.json) {
    printJson(session.out, {{"folder", arguments.folder}, {"protected", password.has_value()}});
  } else {
    session.out << "Extracted to " << oneLine(arguments.folder) << '\n';
  }
}

}  // namespace

Job declareExtractCommand(Options& options) {
  options.describe(
      "Make a new folder of an archive. Of a protected one the password is asked for at the\n"
      "terminal. The folder appears whole, or not at all.");
  auto arguments = std::make_shared<ExtractArguments>();
  options.required("FILE", arguments->file, "The archive");
  options.required("DIR", arguments->folder, "The folder to make");
  options.text("--password-file", arguments->passwordFile,
               "The password is in a file, - for standard input");
  options.flag("--owners", arguments->keepsOwners,
               "Give files to the users and groups of the archive");
  options.flag("--set-id", arguments->keepsSetIDBits,
               "Keep the rights to run as another user, and sticky bits");
  return [arguments](Session& session) { extractArchive(session, *arguments); };
}

}  // namespace orlftool
