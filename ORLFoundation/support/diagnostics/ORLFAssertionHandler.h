/// Hard assertions: a failure is logged with the calls that led to it and shown to the user, who
/// may end the program or go on into the debugger. Whoever asserts writes
///
///     ORLFAssert(count > 0, "%@ has %ld members", name, count);    // in a member of an NSObject
///     ORLFCAssert(count > 0, "%ld members", count);                // elsewhere
///
/// What does not deserve that is a soft assertion (ORLFCondition.h).
#pragma once

#include <ORLFoundation/platform/alert/NSAssertionHandler.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Hands a condition that is false to the handler of `customHandler`. The arguments are evaluated
/// only then.
#define ORLFAssert(condition, ...) \
  ((condition)                     \
       ? static_cast<void>(0)      \
       : ::ORLFoundation::ORLFFailInMethod(*this, __func__, __FILE__, __LINE__, __VA_ARGS__))
#define ORLFCAssert(condition, ...)   \
  ((condition) ? static_cast<void>(0) \
               : ::ORLFoundation::ORLFFailInFunction(__func__, __FILE__, __LINE__, __VA_ARGS__))

namespace ORLFoundation {

class ORLFAssertionHandler : public NSAssertionHandler {
 public:
  /// `errorWithAssertion:context:`  Code 1 in `ORLFErrorDomain`: "The following error occurred:",
  /// the assertion and the context as the suggestion, the options "Quit" and "Continue" ("Debug"
  /// under a debugger), and this handler as the one to ask about recovery.
  [[nodiscard]] std::shared_ptr<NSError> errorWithAssertion(std::string_view assertion,
                                                            std::string_view context);
  /// `presentModalAlert:`  Shows the error and waits for the answer. The second button, "Continue"
  /// included, raises a breakpoint trap, which ends a process without a debugger, and returns. Any
  /// other answer ends the process with signal 9. For the main thread.
  virtual void presentModalAlert(const NSError& error);

  /// `handleFailureInMethod:object:file:lineNumber:description:`  Logs the failure with its place,
  /// "[A run] at y.m:7", and the calls that led to it, all but the first two. Then a debugger stops
  /// here; without one the alert is shown on the main thread while this thread waits, or on this
  /// one where nobody serves the main thread (`NSTryOnMainThread`). When it returns, the code that
  /// failed goes on.
  void handleFailureInMethod(const NSMethodFailure& failure) override;
  /// `handleFailureInFunction:file:lineNumber:description:`  The same with the place "run at
  /// y.m:7".
  void handleFailureInFunction(std::string_view function, std::string_view file,
                               NSInteger lineNumber, std::string_view description,
                               const std::vector<id>& arguments = {}) override;

  /// Kept for callers; nothing here reads or writes it.
  [[nodiscard]] bool showingAlert() const noexcept { return showingAlert_; }
  void setShowingAlert(bool showing) noexcept { showingAlert_ = showing; }

  [[nodiscard]] std::string className() const override { return "ORLFAssertionHandler"; }

 private:
  void handleFailure(const std::string& message, const std::string& context);

  bool showingAlert_ = false;
};

/// `customHandler`  The handler under `NSAssertionHandlerKey` of the calling thread's dictionary;
/// where there is none, the process's one `ORLFAssertionHandler`, made at first need, which is put
/// there. In a process under test it is the platform's `currentHandler`, and the dictionary is left
/// alone: when the standard user defaults have a value for "XCTest", which is looked up once for
/// the process. Any thread.
[[nodiscard]] std::shared_ptr<NSAssertionHandler> customHandler();

/// What the macros call. A failing object that no shared pointer holds is lent to the handler for
/// the time of the call.
[[nodiscard]] id ORLFFailingObject(const NSObject& object);

template <class... Arguments>
void ORLFFailInMethod(const NSObject& object, std::string_view method, std::string_view file,
                      NSInteger lineNumber, std::string_view description,
                      const Arguments&... arguments) {
  customHandler()->handleFailureInMethod({.method = method,
                                          .object = ORLFFailingObject(object),
                                          .file = file,
                                          .lineNumber = lineNumber,
                                          .description = description,
                                          .arguments = {id(arguments)...}});
}

template <class... Arguments>
void ORLFFailInFunction(std::string_view function, std::string_view file, NSInteger lineNumber,
                        std::string_view description, const Arguments&... arguments) {
  customHandler()->handleFailureInFunction(function, file, lineNumber, description,
                                           {id(arguments)...});
}

}  // namespace ORLFoundation
