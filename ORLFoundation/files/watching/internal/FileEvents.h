/// The world as an observer of a file sees it: paths that are opened, sources of events, and where
/// files are. Tests put a scripted one in its place.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/events/dispatch_vnode_source.h>
#include <ORLFoundation/platform/files/NSURLRelationship.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::watching {

class FileEvents {
 public:
  virtual ~FileEvents() = default;

  /// -1 where there is nothing to be opened.
  [[nodiscard]] virtual std::int32_t open(const std::string& path) = 0;
  virtual void close(std::int32_t descriptor) = 0;
  /// nil where the descriptor cannot be watched. A path is the one that it was just opened by.
  [[nodiscard]] virtual dispatch_vnode_source_t makeSource(
      std::int32_t descriptor, std::uint64_t mask, const dispatch_queue_t& queue,
      const std::optional<std::string>& path) = 0;
  /// Where the descriptor's file is now; nil where that is not known.
  [[nodiscard]] virtual std::optional<std::string> pathOf(std::int32_t descriptor) = 0;
  /// How the Trash stands to an item; nil where that cannot be told.
  [[nodiscard]] virtual std::optional<NSURLRelationship> relationshipOfTrash(const NSURL& item) = 0;

  /// The one in use, the machine's by default.
  [[nodiscard]] static std::shared_ptr<FileEvents> current();
  /// Puts another in its place, null for the machine's, and gives back the one before.
  static std::shared_ptr<FileEvents> exchange(std::shared_ptr<FileEvents> events);
};

}  // namespace ORLFoundation::internal::watching
