/// The capture of log lines under the name that tests know it by.
#pragma once

#include <ORLFoundation/platform/object/LogCapture.h>

namespace orlftest {

using ORLFoundation::LogCapture;

}  // namespace orlftest
