/// What tests of observed files share: an observer over a real file whose events are waited for
/// without waiting, and a Trash for the process under test.
#pragma once

#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>
#include <ORLFoundation/platform/events/NodeWatcher.h>
#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

/// The folder of deleted files of this process's user, on the file system of `parentInMemory`.
/// Made, and named to the library, at the first call.
inline const std::filesystem::path& trashFolder() {
  static const TemporaryFolder home(parentInMemory());
  static const std::filesystem::path folder = [] {
    const auto files = std::filesystem::canonical(home.path()) / "Trash/files";
    std::filesystem::create_directories(files);
    ::setenv("XDG_DATA_HOME", files.parent_path().parent_path().c_str(), 1);
    return files;
  }();
  return folder;
}

/// Returns when what has happened to watched files so far was handled on a serial queue, what came
/// of that included.
inline void waitForEvents(const ORLFoundation::dispatch_queue_t& queue) {
  for (int rounds = 0; rounds < 3; ++rounds) {
    if (auto* const watcher = ORLFoundation::internal::events::NodeWatcher::shared())
      watcher->pump();
    ORLFoundation::dispatch_sync(queue, [] {});
  }
}

struct ObservedEvent {
  ORLFoundation::NSInteger event = 0;
  std::optional<std::string> place = std::nullopt;
  friend bool operator==(const ObservedEvent& left, const ObservedEvent& right) {
    return left.event == right.event && left.place == right.place;
  }
};

/// An observer of a path on a serial queue, one of its own if none is given, and what it told.
class ObservedFile {
 public:
  explicit ObservedFile(
      const std::string& path,
      ORLFoundation::dispatch_queue_t serialQueue =
          ORLFoundation::dispatch_queue_create("observed", ORLFoundation::DISPATCH_QUEUE_SERIAL))
      : queue(std::move(serialQueue)),
        observer(std::make_shared<ORLFoundation::ORLFFileSystemObserver>(
            ORLFoundation::NSURL::fileURLWithPath(path), queue,
            [this](ORLFoundation::NSInteger event,
                   const std::optional<ORLFoundation::NSURL>& place) {
              events_.push_back({event, place ? std::optional(place->path()) : std::nullopt});
              if (onEvent) onEvent(event);
            })) {}
  ~ObservedFile() {
    observer->stopObserving();
    ORLFoundation::dispatch_sync(queue, [] {});
  }
  ObservedFile(const ObservedFile&) = delete;
  ObservedFile& operator=(const ObservedFile&) = delete;

  /// The events since the last call, of what happened before it.
  std::vector<ObservedEvent> events() {
    waitForEvents(queue);
    return ORLFoundation::dispatch_sync(queue, [this] { return std::exchange(events_, {}); });
  }
  /// Their numbers.
  std::vector<ORLFoundation::NSInteger> numbers() {
    std::vector<ORLFoundation::NSInteger> found;
    for (const ObservedEvent& event : events()) found.push_back(event.event);
    return found;
  }

  const ORLFoundation::dispatch_queue_t queue;
  const std::shared_ptr<ORLFoundation::ORLFFileSystemObserver> observer;
  /// Called on the queue with each event.
  std::function<void(ORLFoundation::NSInteger event)> onEvent;

 private:
  std::vector<ObservedEvent> events_;
};

inline void appendTo(const std::string& path, const std::string& text = "more") {
  std::ofstream(path, std::ios::app) << text;
}

/// A new file beside the path, renamed over it.
inline void saveAtomically(const std::string& path, const std::string& text) {
  std::ofstream(path + ".new") << text;
  std::filesystem::rename(path + ".new", path);
}

}  // namespace orlftest
