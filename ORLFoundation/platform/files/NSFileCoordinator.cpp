#include <ORLFoundation/platform/files/NSFileCoordinator.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/files/FileFailure.h>

#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<NSFileCoordinatorMaker> makers;
constinit internal::base::Replaceable<NSSecurityScope> scopes;

}  // namespace

void NSFileCoordinator::coordinateReadingItemAtURL(
    const NSURL& url, NSUInteger, const std::function<void(const NSURL& url)>& byAccessor,
    NSErrorSlot error) {
  if (internal::files::pathOfFileURL(url, internal::files::FileWork::Read, error)) byAccessor(url);
}

std::shared_ptr<NSFileCoordinator> NSFileCoordinator::fileCoordinator() {
  const auto maker = makers.current();
  auto made = maker ? (*maker)() : nullptr;
  return made ? made : std::make_shared<NSFileCoordinator>();
}

NSFileCoordinatorMaker NSSetFileCoordinatorMaker(NSFileCoordinatorMaker maker) {
  return makers.exchange(std::move(maker));
}

bool startAccessingSecurityScopedResource(const NSURL& url) {
  const auto scope = scopes.current();
  return scope && scope->startAccessing(url);
}

void stopAccessingSecurityScopedResource(const NSURL& url) {
  if (const auto scope = scopes.current()) scope->stopAccessing(url);
}

std::shared_ptr<NSSecurityScope> NSSetSecurityScope(std::shared_ptr<NSSecurityScope> scope) {
  return scopes.exchange(std::move(scope));
}

}  // namespace ORLFoundation
