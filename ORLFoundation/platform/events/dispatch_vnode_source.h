/// Sources of events of files, which run a block on a queue.
///
///     const int descriptor = open("/home/ann/plan.json", O_PATH | O_CLOEXEC);
///     const auto source = dispatch_source_create(DISPATCH_SOURCE_TYPE_VNODE, descriptor,
///                                                DISPATCH_VNODE_WRITE, queue);
///     if (!source) return void(close(descriptor));
///     dispatch_source_set_event_handler(source, [=] { use(dispatch_source_get_data(source)); });
///     dispatch_source_set_cancel_handler(source, [=] { close(descriptor); });
///     dispatch_resume(source);
///
/// A block that holds its own source, as here, keeps it until it is cancelled.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

/// What befell a file or folder, as bits of one word.
enum dispatch_source_vnode_flags_t : std::uint64_t {
  DISPATCH_VNODE_DELETE = 0x1,   ///< It has no name left, or lost that of the descriptor.
  DISPATCH_VNODE_WRITE = 0x2,    ///< Written or cut; a folder: a name was made, removed, renamed.
  DISPATCH_VNODE_EXTEND = 0x4,   ///< It has grown.
  DISPATCH_VNODE_ATTRIB = 0x8,   ///< Rights, owner, times or extended attributes were set.
  DISPATCH_VNODE_LINK = 0x10,    ///< The number of its names has changed.
  DISPATCH_VNODE_RENAME = 0x20,  ///< The name of the descriptor was moved.
  DISPATCH_VNODE_REVOKE = 0x40,  ///< Its file system was taken from the tree.
};

/// The kind of source, beside those of descriptors that are read and written (dispatch_source.h),
/// whose functions have the same names.
enum class dispatch_source_vnode_type_t : std::uint8_t { vnode };
inline constexpr auto DISPATCH_SOURCE_TYPE_VNODE = dispatch_source_vnode_type_t::vnode;

/// A source. Safe on any thread; its blocks never run side by side, on a concurrent queue neither.
class DispatchVNodeSource : public NSObject {
 public:
  /// What the functions below do.
  virtual void setEventHandler(dispatch_block_t handler) = 0;
  virtual void setCancelHandler(dispatch_block_t handler) = 0;
  virtual void resume() = 0;
  virtual void cancel() = 0;
  [[nodiscard]] virtual std::uint64_t data() const = 0;

  [[nodiscard]] std::string className() const override { return "DispatchVNodeSource"; }
};
/// A counted reference; nil is null.
using dispatch_vnode_source_t = std::shared_ptr<DispatchVNodeSource>;

/// A source of the flags of `mask` that befall what the descriptor stands for, wherever that is
/// moved. It is still until it is resumed; what happens meanwhile it tells then. A queue that is
/// nil is the default global one. nil, with errno, for a bad descriptor, for a file that the user
/// may not read, and when the user's limit of watched files is reached.
///
/// `DISPATCH_VNODE_REVOKE` stands for the lazy unmounting of the file system that the descriptor
/// was opened in: the descriptor hinders a plain one. A file whose end came before the source tells
/// of it at once.
[[nodiscard]] dispatch_vnode_source_t dispatch_source_create(dispatch_source_vnode_type_t type,
                                                             int handle, std::uint64_t mask,
                                                             const dispatch_queue_t& queue);
/// In the event handler: the flags that came since the last call of it, joined into one word.
[[nodiscard]] std::uint64_t dispatch_source_get_data(const dispatch_vnode_source_t& source);
/// Runs on the queue when flags have come, once for all that came while the queue was busy.
void dispatch_source_set_event_handler(const dispatch_vnode_source_t& source,
                                       dispatch_block_t handler);
/// Runs on the queue once after the source was cancelled, behind the event handler if that runs:
/// the place to close the descriptor.
void dispatch_source_set_cancel_handler(const dispatch_vnode_source_t& source,
                                        dispatch_block_t handler);
void dispatch_resume(const dispatch_vnode_source_t& source);
/// No event handler begins from here on. Both blocks are dropped behind the cancel handler.
void dispatch_source_cancel(const dispatch_vnode_source_t& source);

}  // namespace ORLFoundation
