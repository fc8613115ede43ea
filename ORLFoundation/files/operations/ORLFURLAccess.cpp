#include <ORLFoundation/files/operations/ORLFURLAccess.h>

#include <ORLFoundation/platform/files/NSFileCoordinator.h>

namespace ORLFoundation {
namespace {

using Error = std::shared_ptr<const NSError>;

/// Access for as long as it lives: it ends also where the accessor throws.
class Access {
 public:
  explicit Access(const NSURL& url)
      : url_(url), isStarted_(startAccessingSecurityScopedResource(url)) {}
  ~Access() {
    if (isStarted_) stopAccessingSecurityScopedResource(url_);
  }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

 private:
  const NSURL& url_;
  const bool isStarted_;
};

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
  Error outcome;
  {
    const Access access(url);
    outcome = coordinate(*coordinator, url, options,
                         [&](const NSURL& given) { static_cast<void>(accessor(given)); });
  }
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
