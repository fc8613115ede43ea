/// What the tests of calendars, recurrence and plans share: pinned calendars, dates by local time,
/// and the forms of vectors.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
