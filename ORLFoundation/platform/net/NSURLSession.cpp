#include <ORLFoundation/platform/net/NSURLSession.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/net/internal/LoadingSession.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>

#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<NSURLSessionProvider> providers;

}  // namespace

std::shared_ptr<NSURLSession> NSURLSession::sessionWithConfiguration(
    std::shared_ptr<NSURLSessionConfiguration> configuration,
    std::shared_ptr<NSURLSessionDelegate> delegate,
    std::shared_ptr<NSOperationQueue> delegateQueue) {
  if (const auto provider = providers.current())
    if (auto session = (*provider)(configuration, delegate, delegateQueue)) return session;
  return std::make_shared<internal::net::LoadingSession>(configuration, delegate,
                                                         std::move(delegateQueue));
}

NSURLSessionProvider NSSetURLSessionProvider(NSURLSessionProvider provider) {
  return providers.exchange(std::move(provider));
}

}  // namespace ORLFoundation
