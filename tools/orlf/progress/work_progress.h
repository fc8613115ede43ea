/// How a piece of a command's work tells how far it has come. Where nothing is shown it costs
/// nothing.
///
///     WorkProgress progress("Reading bank.csv", size, ProgressUnit::bytes);
///     while (const std::size_t count = read(buffer)) progress.update(position);
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "progress/progress_text.h"

namespace ORLFoundation {
class ORLFProgressItem;
}  // namespace ORLFoundation

namespace orlftool {

class WorkProgress {
 public:
  /// Is shown from now on, in place of what was shown before. Without a total nobody knows how much
  /// there is to do. The message is taken as it is: a path in it may hold anything.
  WorkProgress(const std::string& message, std::optional<double> total,
               ProgressUnit unit = ProgressUnit::steps);
  /// A part of another piece of work.
  WorkProgress(const WorkProgress& whole, const std::string& message, std::optional<double> total);
  /// The work is done.
  ~WorkProgress();
  WorkProgress(const WorkProgress&) = delete;
  WorkProgress& operator=(const WorkProgress&) = delete;

  /// For work that reports to it by itself; null where nothing is shown.
  [[nodiscard]] const std::shared_ptr<ORLFoundation::ORLFProgressItem>& item() const noexcept {
    return item_;
  }
  /// So much has been done of it. Any thread.
  void update(double done) const;

 private:
  void show(const std::string& message, std::optional<double> total);

  std::shared_ptr<ORLFoundation::ORLFProgressItem> item_;
};

}  // namespace orlftool
