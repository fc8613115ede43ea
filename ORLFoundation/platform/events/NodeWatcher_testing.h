/// What tests of watched files share: files held for watching, a watcher that is pumped by hand,
/// and a kernel and a mount table that play a script.
#pragma once

#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <ORLFoundation/platform/events/NodeWatcher.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

namespace events = ORLFoundation::internal::events;

inline constexpr std::uint64_t kAllNodeFlags = 0x7f;

/// A file that is held and watched, and the words that came.
class WatchedNode {
 public:
  WatchedNode(events::NodeWatcher& watcher, const std::string& path,
              std::uint64_t flags = kAllNodeFlags, bool isOpenedNow = false)
      : descriptor_(events::openForEvents(path)) {
    EXPECT_GE(descriptor_, 0) << path;
    begin(watcher, flags, isOpenedNow ? std::optional(path) : std::nullopt);
  }
  /// Takes a descriptor over.
  WatchedNode(events::NodeWatcher& watcher, int descriptor, std::uint64_t flags,
              std::optional<std::string> openedAt)
      : descriptor_(descriptor) {
    begin(watcher, flags, std::move(openedAt));
  }
  ~WatchedNode() {
    watch_ = nullptr;
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  WatchedNode(const WatchedNode&) = delete;
  WatchedNode& operator=(const WatchedNode&) = delete;

  [[nodiscard]] int descriptor() const { return descriptor_; }
  [[nodiscard]] bool isWatched() const { return watch_ != nullptr; }
  void stop() { watch_ = nullptr; }
  /// The words since the last call.
  [[nodiscard]] std::vector<std::uint64_t> words() { return std::exchange(words_, {}); }
  /// Those words as one.
  [[nodiscard]] std::uint64_t flags() {
    std::uint64_t flags = 0;
    for (const std::uint64_t word : words()) flags |= word;
    return flags;
  }

 private:
  void begin(events::NodeWatcher& watcher, std::uint64_t flags,
             std::optional<std::string> openedAt) {
    watch_ = watcher.watch(
        {.descriptor = descriptor_,
         .flags = flags,
         .openedAt = std::move(openedAt),
         .report = [this](std::uint64_t word, events::NodeTurn&) { words_.push_back(word); }});
  }

  int descriptor_;
  std::vector<std::uint64_t> words_;
  std::unique_ptr<events::NodeWatch> watch_;
};

inline void appendToNode(const std::string& path, const std::string& text = "more") {
  std::ofstream(path, std::ios::app) << text;
}

/// A file "a" and an empty folder "d" in a folder, all beneath a fresh one.
class NodeWatcherTest : public TemporaryFolderTest {
 protected:
  NodeWatcherTest() {
    write("a", "text");
    std::filesystem::create_directory(path("d"));
  }
  std::uint64_t flagsAfterPump(WatchedNode& node) {
    watcher_.pump();
    return node.flags();
  }

  events::NodeWatcher watcher_{events::KernelQueue::make(), events::MountTable::make()};
};

/// The kernel's own queue, which loses what it is told to lose as if it had been too long.
class LossyQueue final : public events::KernelQueue {
 public:
  [[nodiscard]] int descriptor() const override { return queue_->descriptor(); }
  [[nodiscard]] int add(const std::string& path, std::uint32_t mask) override {
    return queue_->add(path, mask);
  }
  void set(const std::string& path, std::uint32_t mask) override { queue_->set(path, mask); }
  void remove(int watch) override { queue_->remove(watch); }
  [[nodiscard]] std::vector<events::KernelEvent> read() override {
    auto found = queue_->read();
    if (!std::exchange(losesNext_, false)) return found;
    constexpr std::uint32_t kOverflow = 0x4000;
    return {{-1, kOverflow, false}};
  }
  void loseNext() { losesNext_ = true; }

 private:
  const std::unique_ptr<events::KernelQueue> queue_ = events::KernelQueue::make();
  bool losesNext_ = false;
};

/// A table of mounts that a test fills.
class ScriptedMounts final : public events::MountTable {
 public:
  /// nil where the table cannot be read.
  using Reading = std::optional<std::set<std::uint64_t>>;

  explicit ScriptedMounts(Reading mounts) : readings_{std::move(mounts)} {}

  [[nodiscard]] int descriptor() const override { return -1; }
  [[nodiscard]] bool hasChanged() override { return std::exchange(hasChanged_, false); }
  [[nodiscard]] Reading mounts() override {
    ++count_;
    Reading found = readings_.front();
    if (readings_.size() == 1) return found;
    readings_.pop_front();
    hasChanged_ = hasChanged_ || found.has_value();
    return found;
  }
  /// From now on it is read so, once each but the last. A table that can be read before the last
  /// time changes meanwhile.
  void change(std::deque<Reading> readings) {
    readings_ = std::move(readings);
    hasChanged_ = true;
    count_ = 0;
  }
  /// How often it was read since it was changed.
  [[nodiscard]] int count() const { return count_; }

 private:
  std::deque<Reading> readings_;
  bool hasChanged_ = false;
  int count_ = 0;
};

}  // namespace orlftest
