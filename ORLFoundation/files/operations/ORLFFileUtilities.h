/// Paths compared by the file that they lead to, files of new names, removals that do not mind what
/// is gone already.
///
///     const auto manager = NSFileManager::defaultManager();
///     const std::string path = createUniqueFileAtPath(*manager, "/home/ann/a.txt", data);
///     // "/home/ann/a-1.txt" where a.txt stands there
#pragma once

#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

/// `orlfIsPath:equivalentToPath:error:`  Whether both lead to one file: hard links and other forms
/// of a path do, a link and what it leads to do not. Where a path cannot be asked the answer is
/// false, with its error, the first path's where neither can.
[[nodiscard]] bool orlfIsPathEquivalentToPath(const NSFileManager& manager, const std::string& path,
                                              const std::string& equivalentToPath,
                                              NSErrorSlot error = nullptr);
/// `orlfIsPath:ansestorOfPath:error:`  Whether a path, or one above it, leads to the file of the
/// first path. A path counts as above itself. The root does not count as above anything. Parts of
/// the path that do not exist are no failure; the slot is set to nil for true, else left alone.
[[nodiscard]] bool orlfIsPathAnsestorOfPath(const NSFileManager& manager, const std::string& path,
                                            const std::string& ansestorOfPath,
                                            NSErrorSlot error = nullptr);
/// `createUniqueFileAtPath:contents:attributes:`  Makes a file at the path, or, where something
/// stands there or none can be made, at "a-1.txt" for "a.txt", "a-2.txt" and so on, and answers the
/// path used. No file that is there is ever written to. The count has no limit: the caller makes
/// sure that files can be made in the folder, else the call does not return.
std::string createUniqueFileAtPath(NSFileManager& manager, const std::string& path,
                                   const std::optional<NSData>& contents,
                                   const std::shared_ptr<NSDictionary>& attributes = nullptr);
/// `orlfRemoveItemAtURL:ignoringFileNotFoundError:`  Removes an item; true also where it is absent.
[[nodiscard]] bool orlfRemoveItemAtURL(NSFileManager& manager, const NSURL& url,
                                       NSErrorSlot ignoringFileNotFoundError = nullptr);

}  // namespace ORLFoundation
