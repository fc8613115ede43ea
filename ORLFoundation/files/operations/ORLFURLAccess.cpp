#include <ORLFoundation/files/operations/ORLFURLAccess.h>

#include <ORLFoundation/platform/files/NSFileCoordinator.h>

namespace ORLFoundation {
namespace {

using Error = std::shared_ptr<const NSError>;

bool answer(const Error& outcome, NSErrorSlot error) {
  if (error != nullptr) *error = outcome;
  return outcome == nullptr;
}

/// What the coordinator reports decides; what the accessor answers is dropped.
Error coordinate(NSFileCoordinator& coordinator, const NSURL& url, NSUInteger options,
                 const std::function<void(const NSURL& url)>& accessor) {
  Error reported;
  coordinator.coordinateReadingItemAtURL(url, options, accessor, &reported);
  return reported;
}

}  // namespace

bool orlfCoordinatedSecureAccessWithOptions(const NSURL& url, NSUInteger options,
                                            const ORLFURLAccessor& accessor, NSErrorSlot error) {
  const auto coordinator = NSFileCoordinator::fileCoordinator();
  const bool isStarted = startAccessingSecurityScopedResource(url);
  const Error outcome = coordinate(*coordinator, url, options,
                                   [&](const NSURL& given) { static_cast<void>(accessor(given)); });
  if (isStarted) stopAccessingSecurityScopedResource(url);
  return answer(outcome, error);
}

bool orlfCoordinatedSecureAsynchronousAccessWithOptions(const NSURL& url, NSUInteger options,
                                                        const ORLFURLAsynchronousAccessor& accessor,
                                                        NSErrorSlot error) {
  const bool isStarted = startAccessingSecurityScopedResource(url);
  const ORLFURLRelinquish relinquish = [url, isStarted] {
    if (isStarted) stopAccessingSecurityScopedResource(url);
  };
  bool isCalled = false;
  const auto coordinator = NSFileCoordinator::fileCoordinator();
  const Error outcome = coordinate(*coordinator, url, options, [&](const NSURL& given) {
    isCalled = true;
    static_cast<void>(accessor(given, relinquish));
  });
  if (!isCalled) relinquish();
  return answer(outcome, error);
}

}  // namespace ORLFoundation
