/// Who is asked when a server refuses what a session sent for want of authentication.
///
///     class Login : public ORLFURLSessionDelegate {
///       void sessionDidFail(const std::shared_ptr<ORLFURLSession>&, NSUInteger failures,
///                           Answer authentication) override {
///         const auto request = failures < 3 ? requestWithNewToken() : nullptr;
///         authentication(request, nullptr);
///       }
///     };
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <functional>
#include <memory>

namespace ORLFoundation {

class NSURLRequest;
class ORLFURLSession;

class ORLFURLSessionDelegate {
 public:
  /// Takes the request to be sent in place of the refused one, or null with the error that the task
  /// ends with, null for none. On any thread, then or later.
  using Answer = std::function<void(std::shared_ptr<NSURLRequest> request,
                                    std::shared_ptr<const NSError> error)>;

  ORLFURLSessionDelegate() = default;
  virtual ~ORLFURLSessionDelegate() = default;
  ORLFURLSessionDelegate(const ORLFURLSessionDelegate&) = delete;
  ORLFURLSessionDelegate& operator=(const ORLFURLSessionDelegate&) = delete;

  /// Whether the delegate has the operation below. Without it a task ends with the code -1013, as
  /// it does without a delegate. Asked before each use.
  [[nodiscard]] virtual bool hasSessionDidFail() const { return true; }
  /// `session:didFail:authentication:`  On the session's delegate queue. The count is how often the
  /// task was refused, this time included: nothing else ends a chain of retries. A task whose
  /// answer never comes never ends.
  virtual void sessionDidFail(const std::shared_ptr<ORLFURLSession>& session, NSUInteger didFail,
                              Answer authentication) = 0;
};

}  // namespace ORLFoundation
