/// What the reader of a list of dates should know: what was passed over, and why nothing came.
#pragma once

#include <string>
#include <vector>

#include "dates/dates_request.h"

namespace orlftool {

/// A line for the keys that were passed over, and one for the days that can never match or, where
/// no date came of the request, for the reason.
[[nodiscard]] std::vector<std::string> notesOnDates(const DatesRequest& request, bool areNone);

}  // namespace orlftool
