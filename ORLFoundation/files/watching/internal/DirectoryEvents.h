/// The world as a watcher of a directory sees it: a queue of the kernel, by its descriptor, and a
/// run loop that calls when the queue has something. Tests put a scripted one in its place.
#pragma once

#include <ORLFoundation/platform/events/CFFileDescriptor.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation::internal::watching {

/// What is registered with a queue: a filter and what it is to tell.
struct DirectoryRegistration {
  std::int32_t queue;
  std::int32_t identifier;
  std::int16_t filter;
  std::uint16_t flags;
  std::uint32_t filterFlags;
};

inline constexpr std::int16_t kVnodeFilter = -4;
inline constexpr std::uint16_t kAddAndClear = 0x0021;
inline constexpr std::uint32_t kWritten = 0x2;

/// Descriptors are -1, and references nil, where a call fails.
class DirectoryEvents {
 public:
  virtual ~DirectoryEvents() = default;

  [[nodiscard]] virtual std::int32_t open(const std::string& path) = 0;
  /// `kqueue`
  [[nodiscard]] virtual std::int32_t makeQueue() = 0;
  /// `kevent` of one change.
  [[nodiscard]] virtual bool add(const DirectoryRegistration& registration) = 0;
  /// The reference closes the queue when it is invalidated.
  [[nodiscard]] virtual CFFileDescriptorRef makeReference(std::int32_t queue,
                                                          CFFileDescriptorCallBack callBack,
                                                          void* info) = 0;
  [[nodiscard]] virtual CFRunLoopSourceRef makeRunLoopSource(
      const CFFileDescriptorRef& reference) = 0;
  virtual void addToCurrentRunLoop(const CFRunLoopSourceRef& source, const std::string& mode) = 0;
  virtual void enableReadCallBacks(const CFFileDescriptorRef& reference) = 0;
  virtual void invalidate(const CFFileDescriptorRef& reference) = 0;
  /// `kevent` of no change: takes at most one event from a queue, without waiting, and answers how
  /// many it took; -1 where it cannot be read.
  [[nodiscard]] virtual int drain(std::int32_t queue) = 0;
  virtual void closeQueue(std::int32_t queue) = 0;
  virtual void closeDirectory(std::int32_t directory) = 0;

  /// The one in use, the machine's by default.
  [[nodiscard]] static std::shared_ptr<DirectoryEvents> current();
  /// Puts another in its place, null for the machine's, and gives back the one before.
  static std::shared_ptr<DirectoryEvents> exchange(std::shared_ptr<DirectoryEvents> events);
};

}  // namespace ORLFoundation::internal::watching
