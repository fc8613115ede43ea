#include <ORLFoundation/files/watching/ORLFDirectoryWatcher.h>

#include <ORLFoundation/files/watching/internal/DirectoryEvents.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <utility>

namespace ORLFoundation {

/// What tests reach of the private side.
struct internal::watching::DirectoryWatcherParts {
  static bool start(ORLFDirectoryWatcher& watcher, const std::string& path) {
    return watcher.startMonitoringDirectory(path);
  }
  static void fire(ORLFDirectoryWatcher& watcher) { watcher.kqueueFired(); }
};

namespace {

using internal::watching::DirectoryEvents;
using internal::watching::DirectoryRegistration;
using internal::watching::DirectoryWatcherParts;
using orlftest::disagreement;
using orlftest::Json;

constexpr std::int32_t kDirectory = 100;
constexpr std::int32_t kQueue = 101;

/// Notes each call, of which one may fail.
class ScriptedDirectoryEvents final : public DirectoryEvents {
 public:
  [[nodiscard]] std::int32_t open(const std::string&) override {
    if (!note("open")) return -1;
    held["directory"] = true;
    return kDirectory;
  }
  [[nodiscard]] std::int32_t makeQueue() override {
    if (!note("queue")) return -1;
    held["queue"] = true;
    return kQueue;
  }
  [[nodiscard]] bool add(const DirectoryRegistration& asked) override {
    EXPECT_EQ(asked.queue, kQueue);
    EXPECT_EQ(asked.identifier, kDirectory);
    trace.push_back({"register", asked.filter, asked.flags, asked.filterFlags});
    return failing != "register";
  }
  [[nodiscard]] CFFileDescriptorRef makeReference(std::int32_t queue,
                                                  CFFileDescriptorCallBack given,
                                                  void* info) override {
    if (!note("reference")) return nullptr;
    callBack = given;
    context = info;
    return std::make_shared<CFFileDescriptor>(queue, false, given, info);
  }
  [[nodiscard]] CFRunLoopSourceRef makeRunLoopSource(
      const CFFileDescriptorRef& reference) override {
    if (!note("runLoopSource")) return nullptr;
    return std::make_shared<CFRunLoopSource>(CFRunLoopSource{reference});
  }
  void addToCurrentRunLoop(const CFRunLoopSourceRef&, const std::string& mode) override {
    EXPECT_EQ(mode, "kCFRunLoopDefaultMode");
    note("add");
  }
  void enableReadCallBacks(const CFFileDescriptorRef&) override { note("enable"); }
  void invalidate(const CFFileDescriptorRef&) override { held.erase("queue"); }
  [[nodiscard]] int drain(std::int32_t queue) override {
    EXPECT_EQ(queue, kQueue);
    trace.push_back({"drain", found});
    return found;
  }
  void closeQueue(std::int32_t queue) override {
    EXPECT_EQ(queue, kQueue);
    held.erase("queue");
  }
  void closeDirectory(std::int32_t directory) override {
    EXPECT_EQ(directory, kDirectory);
    held.erase("directory");
  }

  /// As the run loop does when the queue can be read.
  void call(const CFFileDescriptorRef& reference) const {
    callBack(reference, kCFFileDescriptorReadCallBack, context);
  }

  std::string failing;
  Json trace = Json::array();
  Json held = Json::object();
  int found = 0;
  CFFileDescriptorCallBack callBack = nullptr;
  void* context = nullptr;

 private:
  bool note(const char* call) {
    trace.push_back({call});
    return failing != call;
  }
};

struct Target : NSObject {
  void changed(const std::shared_ptr<ORLFDirectoryWatcher>& watcher) {
    EXPECT_EQ(watcher.get(), expected);
    events->trace.push_back({"action"});
  }
  ScriptedDirectoryEvents* events = nullptr;
  ORLFDirectoryWatcher* expected = nullptr;
};

class WatcherPlayer {
 public:
  explicit WatcherPlayer(const Json& in) : in_(in) { events_->failing = in.value("fail", ""); }

  Json play(const Json& step) {
    const auto name = step.at(0).get<std::string>();
    Json result;
    if (name == "watch") result = watch();
    if (name == "monitor" && watcher_) result = DirectoryWatcherParts::start(*watcher_, "/folder");
    if (name == "report") report(step.at(1).get<int>());
    if (name == "dropTarget") target_ = nullptr;
    if (name == "invalidate" && watcher_) watcher_->invalidate();
    if (name == "destroy") watcher_ = nullptr;
    Json held = Json::array();
    for (const auto& [kind, isHeld] : events_->held.items()) held.push_back(kind);
    return {{"result", result},
            {"held", held},
            {"trace", std::exchange(events_->trace, Json::array())}};
  }

 private:
  [[nodiscard]] bool given(const char* argument) const { return in_.at(argument).get<bool>(); }

  bool watch() {
    std::optional<NSSelector> action;
    if (given("action")) action = NSSelectorOf<&Target::changed>("changed:");
    const auto target = std::make_shared<Target>();
    target->events = events_.get();
    if (given("target")) target_ = target;
    if (!in_.value("implements", true)) target_ = std::make_shared<NSObject>();
    const auto path = given("path") ? std::optional<std::string>("/folder") : std::nullopt;
    watcher_ = ORLFDirectoryWatcher::watchFolderWithPath(path, target_, std::move(action));
    target->expected = watcher_.get();
    return watcher_ != nullptr;
  }

  /// A run loop calls for a reference that is in use alone.
  void report(int found) {
    if (!watcher_ || !watcher_->dirKQRef()) return;
    events_->found = found;
    events_->call(watcher_->dirKQRef());
  }

  const Json& in_;
  const std::shared_ptr<ScriptedDirectoryEvents> events_ =
      std::make_shared<ScriptedDirectoryEvents>();
  const Replaced<std::shared_ptr<DirectoryEvents>> door_{DirectoryEvents::exchange, events_};
  std::shared_ptr<NSObject> target_;
  std::shared_ptr<ORLFDirectoryWatcher> watcher_;
};

std::string playWatcher(const Json& in, const Json& out) {
  WatcherPlayer player(in);
  return orlftest::scriptDisagreement(in.at("steps"), out,
                                      [&](const Json& step) { return player.play(step); });
}

TEST(ORLFDirectoryWatcher, AgreesWithVectors) {
  orlftest::runJsonVectors("files_watcher", {{"watcher", playWatcher}});
}

/// A watcher over scripted calls, for what no run loop does.
class FaultyCall : public testing::Test {
 protected:
  const std::shared_ptr<ScriptedDirectoryEvents> events_ =
      std::make_shared<ScriptedDirectoryEvents>();
  const Replaced<std::shared_ptr<DirectoryEvents>> door_{DirectoryEvents::exchange, events_};
  const std::shared_ptr<NSObject> target_ = std::make_shared<Target>();
  const std::shared_ptr<ORLFDirectoryWatcher> watcher_ = ORLFDirectoryWatcher::watchFolderWithPath(
      "/folder", target_, NSSelectorOf<&Target::changed>("changed:"));
};
using FaultyCallDeathTest = FaultyCall;

TEST_F(FaultyCallDeathTest, EndsTheProcessWithAText) {
  NSObject other;
  const auto& reference = watcher_->dirKQRef();
  EXPECT_DEATH(events_->callBack(reference, kCFFileDescriptorReadCallBack, &other),
               R"(\[obj isKindOfClass:\[ORLFDirectoryWatcher class\]\])");
  EXPECT_DEATH(events_->callBack(reference, kCFFileDescriptorReadCallBack, nullptr),
               R"(\[obj isKindOfClass:\[ORLFDirectoryWatcher class\]\])");
  EXPECT_DEATH(events_->callBack(nullptr, kCFFileDescriptorReadCallBack, events_->context),
               "kqRef == obj->dirKQRef");
  EXPECT_DEATH(events_->callBack(reference, kCFFileDescriptorWriteCallBack, events_->context),
               "callBackTypes == kCFFileDescriptorReadCallBack");
  EXPECT_DEATH(events_->callBack(reference, 3, events_->context),
               "callBackTypes == kCFFileDescriptorReadCallBack");
  for (const int found : {-1, 2}) {
    events_->found = found;
    EXPECT_DEATH(events_->call(reference), R"(\(eventCount >= 0\) && \(eventCount < 2\))");
  }
  watcher_->invalidate();
  EXPECT_DEATH(DirectoryWatcherParts::fire(*watcher_), "kq >= 0");
}

TEST_F(FaultyCall, IsTheLastAndLetsGoOfAll) {
  watcher_->invalidate();
  for (const char* failing : {"open", "queue", "register", "reference", "runLoopSource"}) {
    SCOPED_TRACE(failing);
    events_->failing = failing;
    events_->trace.clear();
    EXPECT_FALSE(DirectoryWatcherParts::start(*watcher_, "/folder"));
    EXPECT_EQ(events_->trace.back().at(0), failing);
    EXPECT_TRUE(events_->held.empty());
    EXPECT_EQ(watcher_->dirFD(), -1);
    EXPECT_EQ(watcher_->kq(), -1);
    EXPECT_EQ(watcher_->dirKQRef(), nullptr);
  }
}

}  // namespace
}  // namespace ORLFoundation
