#include <ORLFoundation/files/watching/internal/FileEvents.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/events/EventDescriptor.h>
#include <ORLFoundation/platform/events/VNodeSource.h>
#include <unistd.h>

#include <utility>

namespace ORLFoundation::internal::watching {
namespace {

class MachineFileEvents final : public FileEvents {
 public:
  [[nodiscard]] std::int32_t open(const std::string& path) override {
    return events::openForEvents(path);
  }
  void close(std::int32_t descriptor) override { ::close(descriptor); }
  [[nodiscard]] dispatch_vnode_source_t makeSource(
      std::int32_t descriptor, std::uint64_t mask, const dispatch_queue_t& queue,
      const std::optional<std::string>& path) override {
    return events::makeVNodeSource(descriptor, mask, queue, path);
  }
  [[nodiscard]] std::optional<std::string> pathOf(std::int32_t descriptor) override {
    return events::pathOfDescriptor(descriptor);
  }
  [[nodiscard]] std::optional<NSURLRelationship> relationshipOfTrash(const NSURL& item) override {
    NSURLRelationship relationship = NSURLRelationshipOther;
    if (!getRelationship(&relationship, NSTrashDirectory, 0, item)) return std::nullopt;
    return relationship;
  }
};

constinit base::Replaceable<FileEvents> fileDoor([]() -> std::shared_ptr<FileEvents> {
  return std::make_shared<MachineFileEvents>();
});

}  // namespace

std::shared_ptr<FileEvents> FileEvents::current() { return fileDoor.current(); }

std::shared_ptr<FileEvents> FileEvents::exchange(std::shared_ptr<FileEvents> events) {
  return fileDoor.exchange(std::move(events));
}

}  // namespace ORLFoundation::internal::watching
