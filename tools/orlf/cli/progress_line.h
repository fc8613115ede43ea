/// One line on a terminal that tells how far a long job has come, written over and over and gone at
/// its end. Nothing is written where the messages do not go to a terminal.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>

namespace orlftool {

class ProgressLine {
 public:
  /// The bytes that the job has to read, nil where that is not known.
  ProgressLine(std::ostream& err, std::optional<std::uint64_t> total);
  /// The same where the caller knows whether it is a terminal.
  ProgressLine(std::ostream& err, std::optional<std::uint64_t> total, bool isShown);
  /// Clears the line.
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// So many bytes have been read. The line is written anew for each further 16 MB.
  void update(std::uint64_t done);
  /// Clears the line, for a message that follows.
  void clear();

 private:
  std::ostream& err_;
  const std::optional<std::uint64_t> total_;
  const bool isShown_;
  bool isWritten_ = false;
  std::uint64_t next_;
};

}  // namespace orlftool
