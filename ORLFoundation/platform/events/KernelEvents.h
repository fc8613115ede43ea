/// Where the events of watched files come from: the kernel's one queue for the whole process and
/// its table of mounts. Tests put others in their place.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::events {

struct KernelEvent {
  int watch = -1;
  std::uint32_t mask = 0;
  /// Whether it tells of a name in the watched folder rather than of what is watched.
  bool isOfName = false;
};

class KernelQueue {
 public:
  virtual ~KernelQueue() = default;

  /// Readable while events wait; -1 for a queue that must be asked.
  [[nodiscard]] virtual int descriptor() const = 0;
  /// Watches what a path leads to for the events of inotify's mask, beside those that it is watched
  /// for already; the same number for each path to it. -1, with errno, where that cannot be.
  [[nodiscard]] virtual int add(const std::string& path, std::uint32_t mask) = 0;
  /// The same for these events and no others.
  virtual void set(const std::string& path, std::uint32_t mask) = 0;
  virtual void remove(int watch) = 0;
  /// All events that wait, in their order, without waiting.
  [[nodiscard]] virtual std::vector<KernelEvent> read() = 0;

  /// Returns when changes of names that are under way in the folder around a path are over.
  virtual void waitForChangesAround(const std::string& path);

  /// nullptr, with errno, where the kernel gives no queue.
  [[nodiscard]] static std::unique_ptr<KernelQueue> make();
};

class MountTable {
 public:
  virtual ~MountTable() = default;

  /// Its state changes (POLLPRI) when the table does; -1 for a table that must be asked.
  [[nodiscard]] virtual int descriptor() const = 0;
  /// Whether the table has changed since the last call.
  [[nodiscard]] virtual bool hasChanged() = 0;
  /// The numbers of all mounts; nil where they cannot be read. A table that changes meanwhile may
  /// lack some.
  [[nodiscard]] virtual std::optional<std::set<std::uint64_t>> mounts() = 0;

  /// Of the process; without /proc it never changes and cannot be read. It needs no further
  /// descriptor to be read.
  [[nodiscard]] static std::unique_ptr<MountTable> make();
};

/// The numbers that lines of "36 35 98:0 /root /place ..." begin with; nil where one begins with no
/// number, and for a text without lines.
[[nodiscard]] std::optional<std::set<std::uint64_t>> mountsOfTable(std::string_view text);

}  // namespace ORLFoundation::internal::events
