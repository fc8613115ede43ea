/// Descriptors that are for watching alone: they read and write nothing, need no right to the
/// file's contents, and go on standing for their file wherever it is moved.
///
///     const int descriptor = openForEvents("/home/ann/plan.json");
///     rename("/home/ann/plan.json", "/home/ann/old/plan.json");
///     pathOfDescriptor(descriptor);   // "/home/ann/old/plan.json"
///     close(descriptor);
#pragma once

#include <optional>
#include <string>

namespace ORLFoundation::internal::events {

/// -1, with errno, for what cannot be found: a file without a name too, to which the kernel leads
/// until its removal is over, and those of file systems that count no names. A file that takes
/// another one's place meanwhile is found: one of them is. Links are followed.
/// The descriptor is closed by `close` and in programs that this process starts. While it is held,
/// the file system that the file stands in cannot be unmounted but lazily.
[[nodiscard]] int openForEvents(const std::string& path);

/// The path under which the descriptor's own name stands now: of several names of a file the one by
/// which it was opened. nil when that name is gone, outside of the process's root, longer than the
/// kernel tells (4,095 bytes), and without /proc. A path that is given was seen to lead to the very
/// file.
[[nodiscard]] std::optional<std::string> pathOfDescriptor(int descriptor);

/// Returns when changes of names that are under way in the folder around a path are over. The
/// kernel tells a file of the end of its name before it takes the name away, and of its move after
/// it has moved it.
void waitForChangesAround(const std::string& path);

}  // namespace ORLFoundation::internal::events
