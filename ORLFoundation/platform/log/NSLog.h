/// The log: one line for people, written to a sink that can be replaced.
///
///     NSLog("Condition Failed: count > 0 an empty plan");
///     NSLog(stringWithFormat("%@ took %ld steps", name, steps));   // NSString.h
///
/// Nothing in the library prints in any other way.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Takes one message, without a line end. Runs on the thread that logs.
using NSLogSink = std::function<void(std::string_view message)>;

/// `NSLog`  Hands the message to the sink as it is: signs of percent mean nothing here. The default
/// sink writes a line to standard error. Safe on any thread; messages reach the sink one at a
/// time. A sink that logs while it is called reaches the default sink, so that it cannot run in a
/// circle.
void NSLog(std::string_view message);

/// Replaces the sink and gives back the one before it; an empty sink stands for standard error. No
/// message reaches the old sink once this has returned, unless a sink calls it.
NSLogSink NSSetLogSink(NSLogSink sink);

}  // namespace ORLFoundation
