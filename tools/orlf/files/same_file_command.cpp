#include <ORLFoundation/files/operations/ORLFFileUtilities.h>

#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "files/file_argument.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct SameFileArguments {
  std::string first, second;
};

void compareFiles(Session& session, const SameFileArguments& arguments) {
  std::shared_ptr<const NSError> error;
  const bool isSame = orlfIsPathEquivalentToPath(
      *NSFileManager::defaultManager(), absolutePathOfArgument("A", arguments.first),
      absolutePathOfArgument("B", arguments.second), &error);
  if (error) throw JobFailure(error->localizedDescription());
  if (!isSame) session.exitCode = kExitFailedJob;
  if (session.options.json) {
    printJson(session.out, {{"same", isSame}});
  } else {
    session.out << (isSame ? "one file" : "two files") << '\n';
  }
}

}  // namespace

Job declareSameFileCommand(Options& options) {
  options.describe(
      "Tell whether two paths lead to one file, as hard links and other forms of a path do. A\n"
      "symbolic link is a file of its own. Ends with 1 for two files.");
  auto arguments = std::make_shared<SameFileArguments>();
  options.required("A", arguments->first, "A path");
  options.required("B", arguments->second, "Another one");
  return [arguments](Session& session) { compareFiles(session, *arguments); };
}

}  // namespace orlftool
