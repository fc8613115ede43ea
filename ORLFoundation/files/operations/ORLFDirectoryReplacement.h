/// A folder brought into line with another one, item by item, with a handler that may veto each
/// change.
///
///     const auto keepsWhatIsOnlyThere = [](const NSURL&, ORLFDirectoryReplacementAction action) {
///       return action != ORLFDirectoryReplacementActionRemove;
///     };
///     const bool isDone = orlfReplaceContentsOfDirectoryAtURL(
///         *manager, backup, books, 0, keepsWhatIsOnlyThere, &error);
#pragma once

#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>

namespace ORLFoundation {

/// What is about to be done with an item of the destination.
enum ORLFDirectoryReplacementAction : NSUInteger {
  /// The source has it, the destination has not.
  ORLFDirectoryReplacementActionAdd = 1,
  /// Both have it; the destination's will be replaced.
  ORLFDirectoryReplacementActionReplace = 2,
  /// Both have a folder here, whose contents come next.
  ORLFDirectoryReplacementActionDescend = 3,
  /// The destination has it, the source has not.
  ORLFDirectoryReplacementActionRemove = 4,
};

/// Whether the action is to be taken. The address is always one in the destination.
using ORLFDirectoryReplacementHandler =
    std::function<bool(const NSURL& url, ORLFDirectoryReplacementAction action)>;

/// `orlfReplaceContentsOfDirectoryAtURL:withContentsOfDirectoryAtURL:usingOptions:error:handler:`
/// The whole plan is made first, and the handler asked about each of its items; changes come only
/// then. `usingOptions` are those of `NSDirectoryEnumerationOptions`, for both folders.
///
/// - What only the destination has is removed. A vetoed item stays, and what a vetoed folder holds
///   is asked about one by one.
/// - What only the source has is added, a folder as a whole. A veto leaves it out.
/// - A file that both have is replaced, also where it is equal. Two folders are descended into,
///   unless that is vetoed. A file and a folder of one name change places.
///
/// false with an error where an item cannot be looked at, and then nothing is changed; false too
/// where one cannot be copied, replaced or removed, and then earlier changes stay. The slot is nil
/// after success. Each item is changed in one step: whoever looks, after a crash too, finds the old
/// one or the new one. New items are made in a folder inside of the destination, whose name begins
/// with ".orlf-replacing-"; the next call that changes something there removes what a killed
/// process left. The manager tells of each item that is copied (`setCopyNotice`).
///
/// Links: the path of an item is taken with its links resolved, on both sides. So a link stands for
/// what it leads to: that is compared, copied, replaced, removed in its place. Inside of a folder
/// that is added as a whole links stay links. A link that leads out of its folder, or back to it,
/// is an error before any change. No link is followed once changes have begun, so that a folder
/// that is swapped for a link meanwhile ends the call with an error.
///
/// Pipes, sockets and devices cannot be copied. Neither folder may be, or lie in, the other one.
/// The destination must be on one file system, and neither may change meanwhile.
[[nodiscard]] bool orlfReplaceContentsOfDirectoryAtURL(
    NSFileManager& manager, const NSURL& url, const NSURL& withContentsOfDirectoryAtURL,
    NSUInteger usingOptions, const ORLFDirectoryReplacementHandler& handler,
    NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
