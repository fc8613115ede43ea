/// The threads that wait for the kernel and report what it tells.
#pragma once

#include <ORLFoundation/platform/events/NodeWatcher.h>

namespace ORLFoundation::internal::events {

/// Starts them; they serve the watcher until the process ends. There are two: while one works for a
/// report itself, which spares the way to a third, the other waits. They take no signals. false,
/// with errno, where the machine gives no threads.
[[nodiscard]] bool serveWithThreads(NodeWatcher& watcher);

}  // namespace ORLFoundation::internal::events
