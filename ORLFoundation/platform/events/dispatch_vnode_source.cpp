#include <ORLFoundation/platform/events/dispatch_vnode_source.h>

#include <ORLFoundation/platform/events/VNodeSource.h>
#include <ORLFoundation/platform/events/internal/NodeSource.h>

#include <utility>

namespace ORLFoundation {
namespace internal::events {

static_assert(DISPATCH_VNODE_DELETE == kNodeDelete && DISPATCH_VNODE_WRITE == kNodeWrite &&
              DISPATCH_VNODE_EXTEND == kNodeExtend && DISPATCH_VNODE_ATTRIB == kNodeAttribute &&
              DISPATCH_VNODE_LINK == kNodeLink && DISPATCH_VNODE_RENAME == kNodeRename &&
              DISPATCH_VNODE_REVOKE == kNodeRevoke);

dispatch_vnode_source_t makeVNodeSource(int descriptor, std::uint64_t mask,
                                        const dispatch_queue_t& queue,
                                        std::optional<std::string> openedAt) {
  NodeWatcher* const watcher = NodeWatcher::shared();
  if (watcher == nullptr) return nullptr;
  const auto source = std::make_shared<NodeSource>(
      queue ? queue : dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0));
  return source->watch(*watcher, descriptor, mask, std::move(openedAt)) ? source : nullptr;
}

}  // namespace internal::events

dispatch_vnode_source_t dispatch_source_create(dispatch_source_vnode_type_t, int handle,
                                               std::uint64_t mask, const dispatch_queue_t& queue) {
  return internal::events::makeVNodeSource(handle, mask, queue, std::nullopt);
}

std::uint64_t dispatch_source_get_data(const dispatch_vnode_source_t& source) {
  return source->data();
}

void dispatch_source_set_event_handler(const dispatch_vnode_source_t& source,
                                       dispatch_block_t handler) {
  source->setEventHandler(std::move(handler));
}

void dispatch_source_set_cancel_handler(const dispatch_vnode_source_t& source,
                                        dispatch_block_t handler) {
  source->setCancelHandler(std::move(handler));
}

void dispatch_resume(const dispatch_vnode_source_t& source) { source->resume(); }

void dispatch_source_cancel(const dispatch_vnode_source_t& source) { source->cancel(); }

}  // namespace ORLFoundation
