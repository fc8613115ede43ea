/// Whether a debugger is at work on the process.
#pragma once

namespace ORLFoundation {

/// `IsDebugging`  Whether another process traces this one, by the tracer field of the process's
/// status; false when the status cannot be had or read. Asked anew with each call.
[[nodiscard]] bool IsDebugging();

/// `ORLFDebugger`  Does nothing. A place for a breakpoint.
void ORLFDebugger() noexcept;

}  // namespace ORLFoundation
