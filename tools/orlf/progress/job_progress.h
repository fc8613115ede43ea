/// Runs a command's job off the main thread, while the main thread shows how far it has come: a
/// line on a terminal, or now and then a line in a log.
#pragma once

#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "progress/progress_screen.h"
#include "progress/progress_text.h"
#include "progress/rate_meter.h"

namespace orlftool {

/// Where progress is shown.
enum class ProgressKind : std::uint8_t { none, plain, line };

/// For messages to the standard error: none with `--quiet` and where they go elsewhere, as in
/// tests; a line on a terminal that can erase one, plain lines otherwise.
[[nodiscard]] ProgressKind progressKindOf(const Session& session);

/// Draws for an indicator. Nothing is drawn in the first moments of a job, so that a short one
/// leaves no trace.
class ProgressDrawer final : public ORLFoundation::ORLFProgressIndicatorDelegate {
 public:
  ProgressDrawer(ProgressKind kind, std::string command, ProgressScreen& screen);

  void progressIndicatorDidChange(
      const std::shared_ptr<ORLFoundation::ORLFProgressIndicator>& indicator) override;

 private:
  void drawPlain(const ProgressView& view, std::int64_t now);

  const ProgressKind kind_;
  const std::string command_;
  ProgressScreen& screen_;
  const std::int64_t start_;
  RateMeter meter_;
  std::string message_;
  std::int64_t lastPlain_ = 0;
  int lastPercent_ = 0;
};

/// Runs the job, off the main thread unless nothing is shown. What it throws comes out. Its
/// messages stand above the line of progress; from its first output on a terminal on, that output
/// alone tells how far it has come.
void runJobWithProgress(const Job& job, Session& session);

/// The item of the job that runs; null for none.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFProgressItem> jobProgressItem();
/// What the parts of the job count from now on.
void setJobProgressUnit(ProgressUnit unit);

}  // namespace orlftool
