/// The debug log, which does nothing: its arguments must compile, and are never evaluated.
///
///     _ORLFDebugLog("added %@ to group %@", operation, group);
#pragma once

/// `_ORLFDebugLog`
// NOLINTNEXTLINE(bugprone-reserved-identifier): callers know it by this name.
#define _ORLFDebugLog(...) \
  (true ? static_cast<void>(0) : ::ORLFoundation::ORLFDiscardDebugLog(__VA_ARGS__))

namespace ORLFoundation {

/// What the debug log's arguments are checked against; never called.
template <class... Arguments>
void ORLFDiscardDebugLog(const char* /*format*/, const Arguments&... /*arguments*/) {}

}  // namespace ORLFoundation
