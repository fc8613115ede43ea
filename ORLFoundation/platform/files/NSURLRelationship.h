/// How one of the machine's directories stands to an item: whether a file lies in the Trash.
///
///     NSURLRelationship relationship = NSURLRelationshipOther;
///     const bool isTrashed =
///         getRelationship(&relationship, NSTrashDirectory, 0, NSURL::fileURLWithPath(path)) &&
///         relationship == NSURLRelationshipContains;
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

namespace ORLFoundation {

enum NSURLRelationship : NSInteger {
  NSURLRelationshipContains = 0,  ///< The item lies in the directory, at any depth.
  NSURLRelationshipSame = 1,      ///< The item is the directory.
  NSURLRelationshipOther = 2,
};

inline constexpr NSUInteger NSTrashDirectory = 102;

/// `getRelationship:ofDirectory:inDomain:toItemAtURL:error:`  Of the Trash, in all domains: as the
/// freedesktop.org desktops have it, the user's own ("Trash" in `XDG_DATA_HOME`, or in
/// ".local/share" of his home) and that of the item's volume (".Trash/1000" at its top where
/// ".Trash" is a folder that everybody may use by the sticky bit, or ".Trash-1000"). A link is an
/// item by itself. false, and nothing is filled in, for an item that is not there or cannot be
/// reached (code 260), for an address that is none of a file (262), and for other directories.
[[nodiscard]] bool getRelationship(NSURLRelationship* relationship, NSUInteger ofDirectory,
                                   NSUInteger inDomain, const NSURL& toItemAtURL,
                                   NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
