/// The dates that a request asks for, one after the other.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <functional>

#include "dates/dates_request.h"

namespace orlftool {

/// Calls `give` with each date. Throws JobFailure where the request's dates lie more than 2,000,000
/// periods of its rule apart, and for a walk that passes over as many dates.
void walkDates(const DatesRequest& request, const std::function<void(ORLFoundation::NSDate)>& give);

}  // namespace orlftool
