/// What happens when a hard assertion fails. Each thread has a handler under a key of its
/// dictionary; the platform's own logs the failure and raises.
///
///     NSAssertionHandler::currentHandler()->handleFailureInFunction(
///         __func__, __FILE__, __LINE__, "%@ has %ld members", {name, count});
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// The key of a thread's dictionary under which its handler stands.
inline constexpr std::string_view NSAssertionHandlerKey = "NSAssertionHandler";
inline constexpr const char* NSInternalInconsistencyException = "NSInternalInconsistencyException";

/// A failure in an operation of an object. The description is a format, put together with the
/// arguments as `stringWithFormat` does.
struct NSMethodFailure {
  std::string_view method;
  id object;
  std::string_view file;
  NSInteger lineNumber = 0;
  std::string_view description;
  std::vector<id> arguments = {};
};

class NSAssertionHandler : public NSObject {
 public:
  /// `currentHandler`  The one under `NSAssertionHandlerKey` of the calling thread's dictionary;
  /// where there is none, one of the process, and the dictionary is left as it is.
  [[nodiscard]] static std::shared_ptr<NSAssertionHandler> currentHandler();

  /// `handleFailureInMethod:object:file:lineNumber:description:`  Logs "*** Assertion failure in
  /// [A run], y.m:7" and raises `NSInternalInconsistencyException` with the description.
  virtual void handleFailureInMethod(const NSMethodFailure& failure);
  /// `handleFailureInFunction:file:lineNumber:description:`  The same for "*** Assertion failure in
  /// run, /x/y.m:7".
  virtual void handleFailureInFunction(std::string_view function, std::string_view file,
                                       NSInteger lineNumber, std::string_view description,
                                       const std::vector<id>& arguments = {});

  [[nodiscard]] std::string className() const override { return "NSAssertionHandler"; }
};

}  // namespace ORLFoundation
