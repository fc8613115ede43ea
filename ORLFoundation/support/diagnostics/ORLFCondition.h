/// The soft assertion: a failed condition that must not stop the work is logged, and execution goes
/// on with the next statement.
///
///     ORLFConditionAssert(index <= count, "index <= count", "Should never be index > count");
///
/// logs "Condition Failed: index <= count Should never be index > count" when it does not hold. The
/// text is given apart from the condition because readers of logs know it by its own words.
#pragma once

#include <string_view>

/// Logs when `condition` is false. The other two arguments are evaluated only then.
#define ORLFConditionAssert(condition, text, message) \
  ((condition) ? static_cast<void>(0) : ::ORLFoundation::ORLFLogFailedCondition(text, message))

namespace ORLFoundation {

/// Writes "Condition Failed: <text> <message>" through `NSLog`.
void ORLFLogFailedCondition(std::string_view text, std::string_view message);

}  // namespace ORLFoundation
