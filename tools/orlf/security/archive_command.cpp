#include <ORLFoundation/platform/container/ArchiveError.h>

#include <filesystem>
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

struct ArchiveArguments {
  std::string folder, file;
  bool asksForPassword = false;
  std::optional<std::string> passwordFile;
};

void packFolder(Session& session, const ArchiveArguments& arguments) {
  const NSURL folder = fileURLOfArgument("DIR", arguments.folder);
  const std::string file = absolutePathOfArgument("FILE", arguments.file);
  const NSURL to = NSURL::fileURLWithPath(file);
  const bool isProtected = arguments.asksForPassword || arguments.passwordFile;
  std::optional<Secret> password;
  if (isProtected)
    password.emplace(readSecret({.option = "--password-file",
                                 .file = arguments.passwordFile,
                                 .prompt = "Password of " + arguments.file + ": ",
                                 .isNew = true}));
  try {
    runArchiveTask(
        [&](AppleArchiveOptions options) {
          if (!password) return AppleArchive::archive(folder, to, std::move(options));
          return AppleArchive::archive(folder, to, std::string(password->text()),
                                       std::move(options));
        },
        "Packing " + arguments.folder);
  } catch (const ArchiveError& failure) {
    throw JobFailure(failure.what());
  }
  const auto bytes = std::filesystem::file_size(file);
  if (session.options.json) {
    printJson(session.out,
              {{"archive", arguments.file}, {"bytes", bytes}, {"protected", isProtected}});
  } else {
    session.out << oneLine(arguments.file) << ": " << bytes << " bytes"
                << (isProtected ? ", protected" : "") << '\n';
  }
}

}  // namespace

Job declareArchiveCommand(Options& options) {
  options.describe(
      "Pack a folder into one file, with modes, owners and links. Plain, or sealed under a\n"
      "password. A file that is there already is left alone.");
  auto arguments = std::make_shared<ArchiveArguments>();
  options.required("DIR", arguments->folder, "The folder to pack");
  options.required("FILE", arguments->file, "The archive to make");
  options.flag("--password", arguments->asksForPassword,
               "Seal it; the password is asked for at the terminal");
  options.text("--password-file", arguments->passwordFile,
               "Seal it; the password is in a file, - for standard input");
  options.exclude("--password", "--password-file");
  return [arguments](Session& session) { packFolder(session, *arguments); };
}

}  // namespace orlftool
