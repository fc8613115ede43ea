

#include "cli/option_checks.h"

#include <string>

#include "cli/failure.h"

namespace orlftool {

void checkRange(std::string_view option, std::int64_t value, std::int64_t least,
                std::int64_t most) {
  if (value >= least && value <= most) return;
  throw UsageFailure(std::string(option) + ": expected a number from " + std::to_string(least) +
                     " to " + std::to_string(most) + ", got " + std::to_string(value));
}

void refuseTogether(bool first, std::string_view firstName, bool second,
                    std::string_view secondName) {
  if (first && second)
    throw UsageFailure(std::string(firstName) + " does not go together with " +
                       std::string(secondName));
}

}  // namespace orlftool
