/// The last line of a terminal, written over and over, below what else the program says there.
///
/// Any thread may use it. A line never reaches the terminal's last column, so that it takes one row
/// and can be taken away again; after the terminal was made narrower, as many rows as it takes
/// then. SIGINT, SIGTERM and SIGHUP take it away too before they end the program.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "io/ending_signals.h"

namespace orlftool {

class ProgressScreen {
 public:
  /// Writes to a descriptor. One screen at a time has signals take its line away.
  explicit ProgressScreen(int descriptor);
  /// Takes the line away, for good, and the signals are as before.
  ~ProgressScreen();
  ProgressScreen(const ProgressScreen&) = delete;
  ProgressScreen& operator=(const ProgressScreen&) = delete;

  /// How wide the terminal is now; 80 where it does not say.
  [[nodiscard]] std::size_t columns() const;
  /// Puts a line in the place of the one before.
  void show(const std::string& line);
  /// Writes whole lines, ends included, above.
  void print(std::string_view lines);
  /// Takes the line away; none is shown from now on.
  void close();
  /// Takes the line away until it is resumed.
  void pause();
  void resume();

 private:
  void erase(std::string& output);
  void write(std::string_view bytes) const;

  const int descriptor_;
  std::mutex lock_;
  std::string shown_;
  bool isClosed_ = false, isPaused_ = false;
  const EndingSignals signals_;
};

/// Has the screen that there is, if there is one, show no line while this lives: for questions on
/// the same terminal. Any thread; the screen is not to go meanwhile.
class ProgressPause {
 public:
  ProgressPause();
  ~ProgressPause();
  ProgressPause(const ProgressPause&) = delete;
  ProgressPause& operator=(const ProgressPause&) = delete;

 private:
  ProgressScreen* const screen_;
};

}  // namespace orlftool
