/// Reading a file under coordination, within access that is started and stopped around it.
///
///     orlfCoordinatedSecureAccessWithOptions(url, 0, [&](const NSURL& given) {
///       data = dataWithContentsOfURL(given, 0, &ownError);
///       return ownError;   // told to nobody: what the caller needs it keeps itself
///     });
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>

namespace ORLFoundation {

/// Its answer is dropped.
using ORLFURLAccessor = std::function<std::shared_ptr<const NSError>(const NSURL& url)>;
/// Ends the access; to be called once, when the work is done, on any thread.
using ORLFURLRelinquish = std::function<void()>;
using ORLFURLAsynchronousAccessor = std::function<std::shared_ptr<const NSError>(
    const NSURL& url, const ORLFURLRelinquish& relinquish)>;

/// `orlfCoordinatedSecureAccessWithOptions:accessor:error:`  Calls the accessor with the address
/// that the coordinator gives. The answer tells of the coordination alone: true, and nil in the
/// slot, whatever the accessor answers. What it throws comes through, and access ends.
bool orlfCoordinatedSecureAccessWithOptions(const NSURL& url, NSUInteger options,
                                            const ORLFURLAccessor& accessor,
                                            NSErrorSlot error = nullptr);
/// `orlfCoordinatedSecureAsynchronousAccessWithOptions:accessor:error:`  The same for work that
/// ends after the call: the accessor is given what ends the access and must see to it that it is
/// called. Where the accessor is not called, access is ended here.
bool orlfCoordinatedSecureAsynchronousAccessWithOptions(const NSURL& url, NSUInteger options,
                                                        const ORLFURLAsynchronousAccessor& accessor,
                                                        NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
