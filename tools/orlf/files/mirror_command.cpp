#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>
#include <ORLFoundation/platform/files/NSURLResourceValues.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "files/file_argument.h"
#include "files/mirror_progress.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct MirrorArguments {
  std::string source, destination;
  bool isDryRun = false, keepsRemoved = false, bringsToDisk = false;
};

/// What is to be done, as the handler hears of it.
class MirrorPlan {
 public:
  static constexpr std::string_view kAdd = "add", kReplace = "replace";
  struct Line {
    std::string_view action;
    std::string item;
  };

  MirrorPlan(const MirrorArguments& arguments, const std::string& destination)
      : isDryRun_(arguments.isDryRun),
        keepsRemoved_(arguments.keepsRemoved),
        prefixLength_(stringByResolvingSymlinksInPath(destination).size() + 1) {}

  bool operator()(const NSURL& url, ORLFDirectoryReplacementAction action) {
    const std::string item = itemOf(url);
    switch (action) {
      case ORLFDirectoryReplacementActionDescend:
        return true;
      case ORLFDirectoryReplacementActionAdd:
        return note(kAdd, item, added_);
      case ORLFDirectoryReplacementActionReplace:
        return note(kReplace, item, replaced_);
      default:
        return remove(item);
    }
  }

  /// The path of an item from the top of the destination.
  [[nodiscard]] std::string itemOf(const NSURL& url) const {
    const std::string path = url.path();
    return path.size() > prefixLength_ ? path.substr(prefixLength_) : path;
  }

  /// Throws the failure that copying from `source` would end in, for what is no file, folder or
  /// link.
  void checkKinds(const std::filesystem::path& source) const {
    for (const Line& line : lines_)
      if (line.action == kAdd || line.action == kReplace) checkKind(source / line.item);
  }

  void print(Session& session) const {
    if (session.options.json) {
      Json actions = Json::array();
      for (const Line& line : lines_)
        actions.push_back({{"action", line.action}, {"item", line.item}});
      printJson(session.out, {{"dryRun", isDryRun_},
                              {"added", added_},
                              {"replaced", replaced_},
                              {"removed", removed_},
                              {"kept", kept_},
                              {"actions", std::move(actions)}});
      return;
    }
    if (isDryRun_)
      for (const Line& line : lines_)
        session.out << line.action << ' ' << oneLine(line.item) << '\n';
    session.out << (isDryRun_ ? "To add: " : "Added: ") << added_
                << (isDryRun_ ? ", to replace: " : ", replaced: ") << replaced_
                << (isDryRun_ ? ", to remove: " : ", removed: ") << removed_;
    if (keepsRemoved_) session.out << (isDryRun_ ? ", to keep: " : ", kept: ") << kept_;
    session.out << '\n';
  }

 private:
  static void checkKind(const std::filesystem::path& item) {
    const auto kind = std::filesystem::symlink_status(item).type();
    if (kind == std::filesystem::file_type::regular || kind == std::filesystem::file_type::symlink)
      return;
    if (kind != std::filesystem::file_type::directory)
      throw JobFailure(item.string() + ": it is neither a file, a folder nor a link");
    std::error_code code;
    for (const auto& each : std::filesystem::directory_iterator(item, code)) checkKind(each.path());
    if (code) throw JobFailure(item.string() + ": " + code.message());
  }
  bool note(std::string_view action, const std::string& item, std::size_t& count) {
    ++count;
    lines_.push_back({action, item});
    return !isDryRun_;
  }
  /// What a folder holds that stays is asked about too, and goes without saying.
  bool remove(const std::string& item) {
    const bool isInside = !last_.empty() && item.starts_with(last_);
    if (isInside) return false;
    if (isDryRun_ || keepsRemoved_) last_ = item + "/";
    if (!keepsRemoved_) return note("remove", item, removed_);
    static_cast<void>(note("keep", item, kept_));
    return false;
  }

  const bool isDryRun_, keepsRemoved_;
  const std::size_t prefixLength_;
  std::vector<Line> lines_;
  std::size_t added_ = 0, replaced_ = 0, removed_ = 0, kept_ = 0;
  std::string last_;
};

void runMirror(Session& session, const MirrorArguments& arguments) {
  const std::string destination = absolutePathOfArgument("DESTINATION", arguments.destination);
  const NSURL source = fileURLOfArgument("SOURCE", arguments.source);
  MirrorPlan plan(arguments, destination);
  MirrorProgress progress(arguments.source, arguments.destination);
  const auto decide = [&](const NSURL& url, ORLFDirectoryReplacementAction action) {
    const bool isTaken = plan(url, action);
    const bool isCopied = action == ORLFDirectoryReplacementActionAdd ||
                          action == ORLFDirectoryReplacementActionReplace;
    progress.noteCompared();
    if (isTaken && isCopied) progress.notePlanned(plan.itemOf(url));
    return isTaken;
  };
  NSFileManager manager;
  manager.setBringsCopiesToDisk(arguments.bringsToDisk);
  manager.setCopyNotice([&](const std::string&) { progress.noteCopied(); });
  std::shared_ptr<const NSError> error;
  if (!orlfReplaceContentsOfDirectoryAtURL(manager, NSURL::fileURLWithPath(destination), source, 0,
                                           decide, &error))
    throw JobFailure(error->localizedDescription());
  if (arguments.isDryRun) plan.checkKinds(std::filesystem::path(source.path()).lexically_normal());
  plan.print(session);
}

}  // namespace

Job declareMirrorCommand(Options& options) {
  options.describe(
      "Bring a folder into line with another one: add what it lacks, replace every file that both\n"
      "have, remove what the source does not have. Each item changes in one step. Both folders\n"
      "must be there.");
  auto arguments = std::make_shared<MirrorArguments>();
  options.required("SOURCE", arguments->source, "The folder to take from");
  options.required("DESTINATION", arguments->destination, "The folder to change");
  options.flag("--dry-run", arguments->isDryRun, "Only print what would be done");
  options.flag("--keep-removed", arguments->keepsRemoved,
               "Leave what only the destination has where it is");
  options.flag("--fsync", arguments->bringsToDisk,
               "Bring each file to the disk before it takes its place");
  return [arguments](Session& session) { runMirror(session, *arguments); };
}

}  // namespace orlftool
