
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <ORLFoundation/platform/log/NSLog.h>

#include <string>

namespace ORLFoundation {

void ORLFLogFailedCondition(std::string_view text, std::string_view message) {
  std::string line = "Condition Failed: ";
  line.append(text).append(" ").append(message);
  NSLog(line);
}

}  // namespace ORLFoundation
