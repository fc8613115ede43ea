#include <ORLFoundation/files/watching/ORLFDirectoryWatcher.h>
#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "files/file_argument.h"
#include "session.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
namespace fs = std::filesystem;

struct WatchArguments {
  std::optional<std::string> file;
  std::optional<std::string> directory;
  bool once = false;
};

/// The words for the events of an observer, by their numbers.
constexpr std::array kWords = {"", "started", "changed", "deleted", "moved", "revoked"};

/// Prints a line for each event as it comes, on the command's own thread, and knows when to end.
class EventPrinter final : public NSObject {
 public:
  EventPrinter(Session& session, bool isOnce) : session_(session), isOnce_(isOnce) {}

  void print(NSInteger event, const std::optional<std::string>& place = std::nullopt) {
    if (isEnded_) return;
    const std::string time = dateTimeText(NSDate::date(), *session_.calendar);
    const char* const word = kWords.at(static_cast<std::size_t>(event));
    if (session_.options.json) {
      Json line = {{"time", time}, {"event", word}};
      if (place) line["place"] = *place;
      session_.out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
    } else {
      session_.out << time << ' ' << word << (place ? " " + oneLine(*place) : "") << '\n';
    }
    const bool isLast =
        event >= ORLFFileSystemEventDeleted || (isOnce_ && event != ORLFFileSystemEventStarted);
    if (isLast || !session_.out.flush()) isEnded_ = true;
  }
  void directoryChanged(const std::shared_ptr<ORLFDirectoryWatcher>& /*watcher*/) {
    print(ORLFFileSystemEventChanged);
  }
  [[nodiscard]] bool isEnded() const { return isEnded_; }

 private:
  Session& session_;
  const bool isOnce_;
  bool isEnded_ = false;
};

/// Serves this thread's loop until the printer has printed its last line.
void runUntilEnded(const EventPrinter& printer) {
  while (!printer.isEnded())
    NSRunLoop::currentRunLoop()->runMode(NSDefaultRunLoopMode, NSDate::distantFuture());
}

/// An observer whose events come to this thread's loop. Those of `passed` are left out.
std::shared_ptr<ORLFFileSystemObserver> observerOf(const std::string& path,
                                                   const std::shared_ptr<EventPrinter>& printer,
                                                   NSInteger passed) {
  const auto tell = [printer, passed, loop = NSRunLoop::currentRunLoop()](
                        NSInteger event, const std::optional<NSURL>& place) {
    if (event == passed) return;
    const auto text = place ? std::optional(place->path()) : std::nullopt;
    const auto print = [printer, event, text](const std::shared_ptr<NSObject>&, const id&) {
      printer->print(event, text);
    };
    loop->performSelector({.selector = NSSelector("print:", print),
                           .target = printer,
                           .argument = nullptr,
                           .order = 0,
                           .modes = {NSDefaultRunLoopMode}});
  };
  return std::make_shared<ORLFFileSystemObserver>(
      NSURL::fileURLWithPath(path), dispatch_queue_create("orlf.watch", DISPATCH_QUEUE_SERIAL),
      tell);
}

/// Of what is there, as it is.
std::string pathOf(const std::string& name, bool isDirectory) {
  std::error_code code;
  std::string path = absolutePathOfArgument(isDirectory ? "--directory" : "FILE", name);
  if (fs::is_directory(path, code) != isDirectory && !code)
    throw JobFailure(
        name + (isDirectory ? ": not a directory" : ": a directory; watch it with --directory"));
  if (code) throw JobFailure(name + ": " + code.message());
  return path;
}

/// An observer that is not started says no more than that.
[[noreturn]] void failToWatch(const std::string& name) {
  throw JobFailure(name +
                   ": it cannot be watched; it must be readable, and the limits of open and "
                   "watched files leave room");
}

void watchFile(const std::string& name, const std::shared_ptr<EventPrinter>& printer) {
  const auto observer = observerOf(pathOf(name, false), printer, ORLFFileSystemEventNone);
  if (!observer->startObserving()) failToWatch(name);
  runUntilEnded(*printer);
  observer->stopObserving();
}

void watchDirectory(const std::string& name, const std::shared_ptr<EventPrinter>& printer) {
  const std::string path = pathOf(name, true);
  const auto watcher = ORLFDirectoryWatcher::watchFolderWithPath(
      path, printer, NSSelectorOf<&EventPrinter::directoryChanged>("directoryChanged:"));
  // A watcher tells nothing of the directory's own end.
  const auto observer = observerOf(path, printer, ORLFFileSystemEventChanged);
  if (watcher == nullptr || !observer->startObserving()) failToWatch(name);
  runUntilEnded(*printer);
  observer->stopObserving();
}

void watch(Session& session, const WatchArguments& arguments) {
  if (arguments.file.has_value() == arguments.directory.has_value())
    throw UsageFailure("give either FILE or --directory DIR");
  const auto printer = std::make_shared<EventPrinter>(session, arguments.once);
  if (arguments.file) return watchFile(*arguments.file, printer);
  watchDirectory(*arguments.directory, printer);
}

}  // namespace

Job declareWatchCommand(Options& options) {
  options.describe(
      "Print a line with the time for each thing that happens to a file: changed, deleted, moved,\n"
      "revoked. A file that is replaced by a new one under its name has changed. Ends with the\n"
      "file. Of a directory, tell that names were made, removed or renamed in it.");
  auto arguments = std::make_shared<WatchArguments>();
  options.text("FILE", arguments->file, "The file to watch");
  options.text("--directory", arguments->directory, "Watch the names in a directory");
  options.flag("--once", arguments->once, "End with the first event");
  return [arguments](Session& session) { watch(session, *arguments); };
}

}  // namespace orlftool
