#include <ORLFoundation/files/watching/ORLFFileSystemObserver.h>

#include <ORLFoundation/files/watching/internal/FileEvents.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cstdlib>
#include <future>
#include <map>
#include <set>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::watching::FileEvents;
using orlftest::disagreement;
using orlftest::Json;
using orlftest::jsonOrNull;
using orlftest::textOrNil;

constexpr const char* kPath = "/folder/file";

/// A serial queue that runs when it is told to.
class HeldQueue {
 public:
  HeldQueue() { hold(); }
  ~HeldQueue() { release_.set_value(); }
  HeldQueue(const HeldQueue&) = delete;
  HeldQueue& operator=(const HeldQueue&) = delete;

  void runUntilEmpty() {
    release_.set_value();
    // An item may queue others, and those their last words.
    for (int rounds = 0; rounds < 3; ++rounds) dispatch_sync(queue, [] {});
    hold();
  }

  const dispatch_queue_t queue = dispatch_queue_create("events", DISPATCH_QUEUE_SERIAL);

 private:
  void hold() {
    release_ = {};
    dispatch_async(queue, [gate = release_.get_future().share()] { gate.wait(); });
  }

  std::promise<void> release_;
};

/// The names of descriptors, paths and answers of a row's world, and what was asked of it.
struct World : FileEvents {
  class Source;

  [[nodiscard]] std::int32_t open(const std::string& path) override {
    EXPECT_EQ(path, kPath);
    const std::int32_t opened = standing ? openFile(*standing) : -1;
    note({"open", nameOf(opened)});
    return opened;
  }
  std::int32_t openFile(const std::string& file) {
    files[++descriptors] = file;
    return descriptors;
  }
  void close(std::int32_t descriptor) override { closed.insert(descriptor); }
  [[nodiscard]] dispatch_vnode_source_t makeSource(std::int32_t descriptor, std::uint64_t mask,
                                                   const dispatch_queue_t& queue,
                                                   const std::optional<std::string>& path) override;
  [[nodiscard]] std::optional<std::string> pathOf(std::int32_t descriptor) override {
    const auto place = places.find(files.at(descriptor));
    const auto path = place == places.end() ? std::nullopt : place->second;
    note({"path", nameOf(descriptor), jsonOrNull(path)});
    return path;
  }
  [[nodiscard]] std::optional<NSURLRelationship> relationshipOfTrash(const NSURL& item) override {
    const auto found = answers.find(item.path());
    const std::string answer = found == answers.end() ? "other" : found->second;
    note({"trash", item.path(), answer});
    if (answer == "fails") return std::nullopt;
    if (answer == "contains") return NSURLRelationshipContains;
    return answer == "same" ? NSURLRelationshipSame : NSURLRelationshipOther;
  }

  [[nodiscard]] static Json nameOf(std::int32_t descriptor) {
    return descriptor < 0 ? Json() : Json("d" + std::to_string(descriptor));
  }
  void note(Json call) { trace.push_back(std::move(call)); }

  std::optional<std::string> standing;
  std::map<std::int32_t, std::string> files;
  std::map<std::string, std::optional<std::string>> places;
  std::map<std::string, std::string> answers;
  int refusals = 0;
  std::int32_t descriptors = 0;
  /// Descriptors that the observer opened in vain, and those whose source was cancelled.
  std::set<std::int32_t> ended;
  std::set<std::int32_t> closed;
  Json trace = Json::array();
};

class World::Source final : public DispatchVNodeSource {
 public:
  Source(World& world, std::int32_t descriptor, dispatch_queue_t queue)
      : world_(world), descriptor_(descriptor), queue_(std::move(queue)) {}

  void setEventHandler(dispatch_block_t handler) override { eventHandler_ = std::move(handler); }
  void setCancelHandler(dispatch_block_t handler) override { cancelHandler_ = std::move(handler); }
  void resume() override { world_.note({"resume", nameOf(descriptor_)}); }
  void cancel() override {
    if (std::exchange(isCancelled_, true)) return;
    world_.note({"cancel", nameOf(descriptor_)});
    world_.ended.insert(descriptor_);
    dispatch_async(queue_, [self = shared()] {
      self->eventHandler_ = nullptr;
      std::exchange(self->cancelHandler_, nullptr)();
    });
  }
  [[nodiscard]] std::uint64_t data() const override { return flags_; }

  void fire(std::uint64_t flags) {
    dispatch_async(queue_, [self = shared(), flags] {
      if (self->isCancelled_) return;
      self->flags_ = flags;
      dispatch_block_t(self->eventHandler_)();
    });
  }
  [[nodiscard]] std::int32_t descriptor() const { return descriptor_; }

 private:
  std::shared_ptr<Source> shared() { return std::static_pointer_cast<Source>(shared_from_this()); }

  World& world_;
  const std::int32_t descriptor_;
  const dispatch_queue_t queue_;
  dispatch_block_t eventHandler_;
  dispatch_block_t cancelHandler_;
  std::uint64_t flags_ = 0;
  bool isCancelled_ = false;
};

dispatch_vnode_source_t World::makeSource(std::int32_t descriptor, std::uint64_t mask,
                                          const dispatch_queue_t& queue,
                                          const std::optional<std::string>& path) {
  const bool isMade = refusals == 0;
  if (!isMade) --refusals;
  EXPECT_TRUE(!path || *path == kPath);
  note({"source", nameOf(descriptor), mask, isMade});
  if (!isMade && path) ended.insert(descriptor);
  return isMade ? std::make_shared<Source>(*this, descriptor, queue) : nullptr;
}

class ObserverPlayer {
 public:
  explicit ObserverPlayer(const Json& in) {
    world_->standing = textOrNil(in.at("file"));
    const Json inHandler = in.value("inHandler", Json::object());
    ORLFFileSystemObserver::EventHandler handler;
    if (in.at("handler").get<bool>())
      handler = [this, inHandler](NSInteger event, const std::optional<NSURL>& place) {
        handle(inHandler, event, place);
      };
    observer_ = std::make_shared<ORLFFileSystemObserver>(NSURL::fileURLWithPath(kPath),
                                                         queue_.queue, std::move(handler));
    weak_ = observer_;
  }
  ~ObserverPlayer() {
    if (const auto observer = weak_.lock()) observer->stopObserving();
    queue_.runUntilEmpty();
  }
  ObserverPlayer(const ObserverPlayer&) = delete;
  ObserverPlayer& operator=(const ObserverPlayer&) = delete;

  Json play(const Json& step) {
    const auto name = step.at(0).get<std::string>();
    const Json result = apply(step);
    if (name == "drain" || name == "fire") {
      queue_.runUntilEmpty();
      EXPECT_EQ(world_->closed, world_->ended);
    }
    const auto source = sourceInUse();
    const auto observer = weak_.lock();
    return {{"result", result},
            {"observing", observer != nullptr && observer->isObserving()},
            {"descriptor", source ? World::nameOf(source->descriptor()) : Json()},
            {"trace", std::exchange(world_->trace, Json::array())}};
  }

 private:
  /// Of a number, or of a text in hexadecimal.
  static std::uint64_t numberOf(const Json& value) {
    return value.is_string() ? std::stoull(value.get<std::string>(), nullptr, 16)
                             : value.get<std::uint64_t>();
  }

  /// What a handler may do too. What is asked of an observer that is gone gives nothing.
  Json apply(const Json& step) {
    const auto name = step.at(0).get<std::string>();
    if (name == "put") world_->standing = textOrNil(step.at(1));
    if (name == "at") world_->places[step.at(1)] = textOrNil(step.at(2));
    if (name == "trash") world_->answers[step.at(1)] = step.at(2);
    if (name == "refuse") world_->refusals = step.at(1).get<int>();
    if (name == "fire") fire(numberOf(step.at(1)));
    if (name == "release") {
      observer_ = nullptr;
      return !weak_.expired();
    }
    const auto observer = weak_.lock();
    if (!observer) return {};
    if (name == "start") return observer->startObserving();
    if (name == "stop") observer->stopObserving();
    if (name == "observe") return observe(*observer, step);
    return {};
  }

  bool observe(ORLFFileSystemObserver& observer, const Json& step) {
    const auto file = textOrNil(step.at(1));
    const std::int32_t descriptor = file ? world_->openFile(*file) : -1;
    return observer.startObservingFileDescriptor(descriptor, numberOf(step.at(2)));
  }

  std::shared_ptr<World::Source> sourceInUse() const {
    const auto observer = weak_.lock();
    return observer ? std::static_pointer_cast<World::Source>(observer->dispatchSource()) : nullptr;
  }

  void fire(std::uint64_t flags) {
    if (const auto source = sourceInUse()) source->fire(flags);
  }

  void handle(const Json& inHandler, NSInteger event, const std::optional<NSURL>& place) {
    const auto observer = weak_.lock();
    const bool isObserving = observer != nullptr && observer->isObserving();
    world_->note({"event", event, place ? Json(place->path()) : Json(), isObserving});
    const auto steps = inHandler.find(std::to_string(event));
    if (steps == inHandler.end()) return;
    for (const Json& step : *steps) {
      const auto name = step.at(0).get<std::string>();
      const Json result = apply(step);
      if (name == "start" || name == "stop" || name == "observe") world_->note({name, result});
    }
  }

  const std::shared_ptr<World> world_ = std::make_shared<World>();
  const Replaced<std::shared_ptr<FileEvents>> door_{FileEvents::exchange, world_};
  HeldQueue queue_;
  std::shared_ptr<ORLFFileSystemObserver> observer_;
  std::weak_ptr<ORLFFileSystemObserver> weak_;
};

std::string playObserver(const Json& in, const Json& out) {
  ObserverPlayer player(in);
  return orlftest::scriptDisagreement(in.at("steps"), out,
                                      [&](const Json& step) { return player.play(step); });
}

TEST(ORLFFileSystemObserver, AgreesWithVectorsOfObservers) {
  orlftest::runJsonVectors("files_observer", {{"observer", playObserver}});
}

TEST(ORLFFileSystemObserver, AgreesWithVectorsOfFlags) {
  orlftest::runJsonVectors(
      "files_flags", {{"eventForVNodeFlag", [](const Json& in, const Json& out) {
                         const auto flags = std::stoull(in.get<std::string>(), nullptr, 16);
                         return disagreement(out.get<NSInteger>(),
                                             ORLFFileSystemObserver::eventForVNodeFlag(flags));
                       }}});
}

/// The table, word by word, for every word of eight bits.
TEST(ORLFFileSystemObserver, TakesTheFirstFlagThatFits) {
  for (std::uint64_t flags = 0; flags < 256; ++flags) {
    const NSInteger expected = (flags & 0x1) != 0    ? 3
                               : (flags & 0x20) != 0 ? 4
                               : (flags & 0x40) != 0 ? 5
                               : (flags & 0x1e) != 0 ? 2
                                                     : 0;
    for (const std::uint64_t unknown : {0x0ULL, 0xffffffffffffff00ULL, 0x100000000ULL})
      ASSERT_EQ(ORLFFileSystemObserver::eventForVNodeFlag(flags | unknown), expected) << flags;
  }
}

}  // namespace
}  // namespace ORLFoundation
