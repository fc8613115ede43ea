/// What tests say of exceptions.
#pragma once

#include <ORLFoundation/platform/value/NSException.h>

#include <string>

namespace orlftest {

/// The name of the exception that an action raises; "" for none.
template <class Action>
std::string nameOfException(Action action) {
  try {
    action();
  } catch (const ORLFoundation::NSException& exception) {
    return exception.name();
  }
  return "";
}

/// "name: reason" of the exception that an action raises; "" for none.
template <class Action>
std::string raisedBy(Action action) {
  try {
    action();
  } catch (const ORLFoundation::NSException& exception) {
    return exception.name() + ": " + exception.reason();
  }
  return "";
}

}  // namespace orlftest
