/// What a signal that ends the program takes away first: a line that is shown on the terminal for
/// a while, and files that are not finished (TemporaryPath.h).
#pragma once

#include <csignal>
#include <string_view>
#include <utility>
#include <vector>

namespace orlftool {

class EndingSignals {
 public:
  /// SIGINT, SIGTERM and SIGHUP do so from now on, those that would end the program as they are.
  EndingSignals();
  /// They are as before.
  ~EndingSignals();
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;

 private:
  std::vector<std::pair<int, struct sigaction>> before_;
};

/// Erases the row of a terminal.
inline constexpr std::string_view kEraseRow = "\r\x1B[K";
/// The descriptor of the terminal whose row is erased, -1 for none. Of the process; any thread.
void setRowToErase(int descriptor) noexcept;

}  // namespace orlftool
