/// Checks that many commands make of their options. Each throws UsageFailure with one line that
/// names the option.
#pragma once

#include <cstdint>
#include <string_view>

namespace orlftool {

/// Whether a number lies in its range, both ends included.
void checkRange(std::string_view option, std::int64_t value, std::int64_t least, std::int64_t most);
/// Refuses two options that were both given.
void refuseTogether(bool first, std::string_view firstName, bool second,
                    std::string_view secondName);

}  // namespace orlftool
