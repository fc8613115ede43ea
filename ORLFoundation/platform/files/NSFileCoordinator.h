/// Reading under file coordination, and scoped access to what lies outside of a program's own
/// folders. This system knows neither: the coordinator gives the address to its accessor and fails
/// for what is no file's address alone, and no access is ever started. A host with a coordination
/// of its own puts both in place.
///
///     const Replaced coordination(NSSetFileCoordinatorMaker, [] { return std::make_shared<Ours>();
///     });
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>
#include <string>

namespace ORLFoundation {

enum NSFileCoordinatorReadingOptions : NSUInteger {
  NSFileCoordinatorReadingWithoutChanges = 1,
  NSFileCoordinatorReadingResolvesSymbolicLink = 2,
  NSFileCoordinatorReadingImmediatelyAvailableMetadataOnly = 4,
  NSFileCoordinatorReadingForUploading = 8,
};

class NSFileCoordinator : public NSObject {
 public:
  /// `coordinateReadingItemAtURL:options:error:byAccessor:`  Calls the accessor once, before it
  /// returns, with the address to read from; or not at all, with the error told.
  virtual void coordinateReadingItemAtURL(const NSURL& url, NSUInteger options,
                                          const std::function<void(const NSURL& url)>& byAccessor,
                                          NSErrorSlot error = nullptr);
  /// One of the kind that is in place.
  [[nodiscard]] static std::shared_ptr<NSFileCoordinator> fileCoordinator();

  [[nodiscard]] std::string className() const override { return "NSFileCoordinator"; }
};

using NSFileCoordinatorMaker = std::function<std::shared_ptr<NSFileCoordinator>()>;
/// Replaces what makes coordinators and gives back the one before it; an empty one, and one that
/// gives null, stand for those above. Safe on any thread.
NSFileCoordinatorMaker NSSetFileCoordinatorMaker(NSFileCoordinatorMaker maker);

/// Access to an item that a program may reach between a start and a stop alone.
class NSSecurityScope {
 public:
  NSSecurityScope() = default;
  virtual ~NSSecurityScope() = default;
  NSSecurityScope(const NSSecurityScope&) = delete;
  NSSecurityScope& operator=(const NSSecurityScope&) = delete;
  /// Whether access was started; it is stopped then, and only then.
  [[nodiscard]] virtual bool startAccessing(const NSURL& url) = 0;
  virtual void stopAccessing(const NSURL& url) = 0;
};

/// `startAccessingSecurityScopedResource`  false where no scope is in place.
[[nodiscard]] bool startAccessingSecurityScopedResource(const NSURL& url);
/// `stopAccessingSecurityScopedResource`
void stopAccessingSecurityScopedResource(const NSURL& url);
/// Replaces the scope and gives back the one before it; null for none. Safe on any thread.
std::shared_ptr<NSSecurityScope> NSSetSecurityScope(std::shared_ptr<NSSecurityScope> scope);

}  // namespace ORLFoundation
