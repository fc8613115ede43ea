/// How far a job has come, as a line of text: for a terminal, with a bar, and for a log.
///
///     | Reading bank.csv        [##########----------]  52%  51.0 MB/s
///     Reading bank.csv, 52%, 104.0 MB of 200.0 MB, 51.0 MB/s
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

/// What is counted.
enum class ProgressUnit : std::uint8_t { steps, bytes };

struct ProgressView {
  std::string message;
  bool isIndeterminate = false;
  double value = 0;
  double maximum = 0;
  ProgressUnit unit = ProgressUnit::steps;
  /// Units a second; nil while nobody knows.
  std::optional<double> rate;
  /// Since the job began.
  double seconds = 0;

  /// The whole percentage, from 0 to 100; nil for what is indeterminate, has no maximum, or is
  /// not-a-number.
  [[nodiscard]] std::optional<int> percent() const;
};

/// The line for a terminal that is so many columns wide, of which the last one stays empty; never
/// more, whatever the message holds. Where it is narrow the rate is left out first, then the bar,
/// then the end of the message. The spinner stands at one of its turns.
[[nodiscard]] std::string progressLine(const ProgressView& view, std::size_t columns,
                                       std::uint64_t turn);
/// The line for a log, without an end.
[[nodiscard]] std::string plainProgressLine(const ProgressView& view);

/// The columns that a text takes on a terminal: 2 for East Asian and pictorial characters, none for
/// marks on others.
[[nodiscard]] std::size_t columnsOfText(std::string_view text);

}  // namespace orlftool
