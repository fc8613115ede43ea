
#include <ORLFoundation/platform/alert/NSAssertionHandler.h>

#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation {
namespace {

[[noreturn]] void raiseFailure(const std::string& place, std::string_view file,
                               NSInteger lineNumber, std::string_view description,
                               const std::vector<id>& arguments) {
  NSLog(stringWithFormat("*** Assertion failure in %@, %@:%ld", place, file, lineNumber));
  throw NSException(NSInternalInconsistencyException,
                    stringWithFormatArguments(description, arguments));
}

}  // namespace

std::shared_ptr<NSAssertionHandler> NSAssertionHandler::currentHandler() {
  const auto dictionary = NSThread::currentThread()->threadDictionary();
  if (auto handler = dictionary->objectForKey(NSAssertionHandlerKey).as<NSAssertionHandler>())
    return handler;
  // Never destroyed: assertions that fail while the process ends still find it.
  static const auto& handler = *new auto(std::make_shared<NSAssertionHandler>());
  return handler;
}

void NSAssertionHandler::handleFailureInMethod(const NSMethodFailure& failure) {
  raiseFailure(stringWithFormat("[%@ %@]", failure.object.className(), failure.method),
               failure.file, failure.lineNumber, failure.description, failure.arguments);
}

void NSAssertionHandler::handleFailureInFunction(std::string_view function, std::string_view file,
                                                 NSInteger lineNumber, std::string_view description,
                                                 const std::vector<id>& arguments) {
  raiseFailure(std::string(function), file, lineNumber, description, arguments);
}

}  // namespace ORLFoundation
