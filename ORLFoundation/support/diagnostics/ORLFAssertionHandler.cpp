#include <ORLFoundation/support/diagnostics/ORLFAssertionHandler.h>

#include <ORLFoundation/platform/alert/NSAlert.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugging.h>
#include <ORLFoundation/support/diagnostics/ORLFProcessDoor.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr NSInteger kAssertionErrorCode = 1;
constexpr std::size_t kOwnCalls = 2;

/// "/x/y.m" as "y.m"; slashes at the end are passed over.
std::string lastPathComponent(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  if (path != "/") path.remove_prefix(path.rfind('/') + 1);
  return std::string(path);
}

void logCalls(const std::vector<std::string>& lines) {
  const std::size_t first = std::min(kOwnCalls, lines.size());
  std::vector<id> rest(lines.begin() + static_cast<std::ptrdiff_t>(first), lines.end());
  NSLog(stringWithFormat("%@", std::make_shared<NSArray>(std::move(rest))));
}

bool isUnderTest() {
  static const bool isUnderTest =
      !NSUserDefaults::standardUserDefaults()->valueForKey("XCTest").isNil();
  return isUnderTest;
}

/// Never destroyed: assertions that fail while the process ends still find it.
const std::shared_ptr<ORLFAssertionHandler>& sharedHandler() {
  static const auto& handler = *new auto(std::make_shared<ORLFAssertionHandler>());
  return handler;
}

}  // namespace

std::shared_ptr<NSError> ORLFAssertionHandler::errorWithAssertion(std::string_view assertion,
                                                                  std::string_view context) {
  const auto self = weak_from_this().lock();
  const std::pair<std::string_view, id> parts[] = {
      {NSLocalizedDescriptionKey, "The following error occurred:"},
      {NSLocalizedRecoverySuggestionErrorKey, stringWithFormat("%@\n\n%@", assertion, context)},
      {NSLocalizedRecoveryOptionsErrorKey,
       NSArray::arrayWithObjects({"Quit", IsDebugging() ? "Debug" : "Continue"})},
      {NSRecoveryAttempterErrorKey, self ? id(self) : id()}};
  NSDictionary::Entries userInfo;
  for (const auto& [key, value] : parts)
    if (!value.isNil()) userInfo.emplace_back(key, value);
  return NSError::errorWithDomain(ORLFErrorDomain, kAssertionErrorCode,
                                  std::make_shared<NSDictionary>(userInfo));
}

void ORLFAssertionHandler::presentModalAlert(const NSError& error) {
  const NSInteger answer = NSAlert::alertWithError(error)->runModal();
  const std::shared_ptr<ORLFProcessDoor> door = ORLFCurrentProcessDoor();
  if (answer == NSAlertSecondButtonReturn) {
    door->trap();
  } else {
    door->quit();
  }
}

void ORLFAssertionHandler::handleFailureInMethod(const NSMethodFailure& failure) {
  const std::string className = failure.object ? failure.object.className() : "(null)";
  const std::string context = stringWithFormat("[%@ %@] at %@:%ld", className, failure.method,
                                               lastPathComponent(failure.file), failure.lineNumber);
  handleFailure(stringWithFormatArguments(failure.description, failure.arguments), context);
}

void ORLFAssertionHandler::handleFailureInFunction(std::string_view function, std::string_view file,
                                                   NSInteger lineNumber,
                                                   std::string_view description,
                                                   const std::vector<id>& arguments) {
  const std::string context =
      stringWithFormat("%@ at %@:%ld", function, lastPathComponent(file), lineNumber);
  handleFailure(stringWithFormatArguments(description, arguments), context);
}

/// Stays a call of its own: it and the operation that calls it are the two that the log leaves out.
[[gnu::noinline]] void ORLFAssertionHandler::handleFailure(const std::string& message,
                                                           const std::string& context) {
  NSLog(stringWithFormat("ASSERTION failure: <%@> in %@", message, context));
  logCalls(NSThread::callStackSymbols());
  if (IsDebugging()) return ORLFCurrentProcessDoor()->trap();
  const std::shared_ptr<NSError> error = errorWithAssertion(message, context);
  // A main thread that nobody serves shows nothing: the failure is then told in place.
  if (!NSTryOnMainThread([&] { presentModalAlert(*error); })) presentModalAlert(*error);
}

std::shared_ptr<NSAssertionHandler> customHandler() {
  if (isUnderTest()) return NSAssertionHandler::currentHandler();
  const auto dictionary = NSThread::currentThread()->threadDictionary();
  if (auto own = dictionary->objectForKey(NSAssertionHandlerKey).as<NSAssertionHandler>())
    return own;
  dictionary->setObject(sharedHandler(), NSAssertionHandlerKey);
  return sharedHandler();
}

id ORLFFailingObject(const NSObject& object) { return object.receiverOrReference(); }

}  // namespace ORLFoundation
