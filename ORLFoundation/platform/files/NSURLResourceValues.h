/// What the file system knows of the item at a file address, and paths with their links resolved.
///
///     std::shared_ptr<const NSError> error;
///     const auto values = resourceValuesForKeys(url, {NSURLIsDirectoryKey}, &error);
///     if (values) show(values->objectForKey(NSURLIsDirectoryKey).as<bool>() == true);
///
/// Values are those of the item itself; of a link, not of what it leads to.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// A boolean.
inline constexpr std::string_view NSURLIsDirectoryKey = "NSURLIsDirectoryKey";
/// In bytes; absent for folders.
inline constexpr std::string_view NSURLFileSizeKey = "NSURLFileSizeKey";
/// A date.
inline constexpr std::string_view NSURLContentModificationDateKey =
    "NSURLContentModificationDateKey";

/// `resourceValuesForKeys:error:`  The values under those of the keys that the item has; other keys
/// are left out. null, with an error of `NSCocoaErrorDomain`, where the item cannot be asked: 260
/// for one that is absent.
[[nodiscard]] std::shared_ptr<NSDictionary> resourceValuesForKeys(
    const NSURL& url, const std::vector<std::string_view>& keys, NSErrorSlot error = nullptr);
/// `getResourceValue:forKey:error:`  One value, nil where the item has none under the key; false
/// where the item cannot be asked, and then the value is left alone.
[[nodiscard]] bool getResourceValue(const NSURL& url, id& value, std::string_view forKey,
                                    NSErrorSlot error = nullptr);
/// `URLByResolvingSymlinksInPath`  The address of the path with every link on it replaced by what
/// it leads to, also where nothing stands there. Addresses of other schemes come back as they are.
[[nodiscard]] NSURL URLByResolvingSymlinksInPath(const NSURL& url);
/// `stringByResolvingSymlinksInPath`  The same of a path; "." and ".." are resolved too. A path
/// whose links go round in a circle, or of more than 40 links, comes back as it is, and so does a
/// relative one.
[[nodiscard]] std::string stringByResolvingSymlinksInPath(const std::string& path);

}  // namespace ORLFoundation
