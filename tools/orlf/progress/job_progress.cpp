#include "progress/job_progress.h"

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <mutex>
#include <thread>
#include <utility>

#include "progress/progress_streams.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kBeforeLine = 200 * kMillisecond;
constexpr std::int64_t kBeforePlain = 1000 * kMillisecond;
constexpr std::int64_t kLongestPause = 30'000 * kMillisecond;
constexpr int kPercentStep = 10;
constexpr NSTimeInterval kSpinnerTurn = 0.1;

std::mutex lockOfJob;
std::shared_ptr<ORLFProgressItem> itemOfJob;
std::atomic<ProgressUnit> unitOfJob{ProgressUnit::steps};

/// Makes an item that of the job that runs.
class JobItem {
 public:
  explicit JobItem(std::shared_ptr<ORLFProgressItem> item) { exchange(std::move(item)); }
  ~JobItem() { exchange(nullptr); }
  JobItem(const JobItem&) = delete;
  JobItem& operator=(const JobItem&) = delete;

 private:
  static void exchange(std::shared_ptr<ORLFProgressItem> item) {
    const std::lock_guard guard(lockOfJob);
    itemOfJob.swap(item);
  }
};

bool isTerminal(const std::ostream& stream, const std::ostream& standard, int descriptor) {
  return stream.rdbuf() == standard.rdbuf() && ::isatty(descriptor) != 0;
}

bool canErase() {
  const char* const name = std::getenv("TERM");
  return name != nullptr && *name != '\0' && std::string_view(name) != "dumb";
}

/// The main thread's part: shows the item until the job has ended.
void serveUntil(const std::atomic<bool>& isDone, const std::shared_ptr<ORLFProgressItem>& item,
                const std::shared_ptr<ORLFProgressIndicator>& indicator) {
  indicator->displayProgressItem(item);
  const auto spinner = NSTimer::timerWithTimeInterval(
      kSpinnerTurn, true, [indicator](NSTimer&) { indicator->updateDisplayTimer(); });
  NSRunLoop::mainRunLoop()->addTimer(spinner, NSRunLoopCommonModes);
  while (!isDone) pumpMainQueue(1);
  spinner->invalidate();
  indicator->setDelegate(nullptr);
  indicator->removeProgressItem(item);
}

}  // namespace

std::shared_ptr<ORLFProgressItem> jobProgressItem() {
  const std::lock_guard guard(lockOfJob);
  return itemOfJob;
}

void setJobProgressUnit(ProgressUnit unit) { unitOfJob = unit; }

ProgressKind progressKindOf(const Session& session) {
  if (session.options.quiet || session.err.rdbuf() != std::cerr.rdbuf()) return ProgressKind::none;
  const bool isLine = ::isatty(STDERR_FILENO) != 0 && canErase();
  return isLine ? ProgressKind::line : ProgressKind::plain;
}

ProgressDrawer::ProgressDrawer(ProgressKind kind, std::string command, ProgressScreen& screen)
    : kind_(kind), command_(std::move(command)), screen_(screen), start_(NSMonotonicClock::now()) {}

void ProgressDrawer::progressIndicatorDidChange(
    const std::shared_ptr<ORLFProgressIndicator>& indicator) {
  const std::int64_t now = NSMonotonicClock::now();
  ProgressView view;
  view.message = indicator->message().value_or("Working");
  view.isIndeterminate = indicator->indeterminate();
  view.value = indicator->currentValue();
  view.maximum = indicator->maxValue();
  view.unit = unitOfJob;
  view.seconds = static_cast<double>(now - start_) / 1e9;
  if (std::exchange(message_, view.message) != view.message) meter_ = {};
  meter_.note(now, view.value);
  if (view.value > 0) view.rate = meter_.rate();
  if (kind_ == ProgressKind::plain) return drawPlain(view, now);
  if (now - start_ < kBeforeLine) return;
  const auto turn = static_cast<std::uint64_t>((now - start_) / (100 * kMillisecond));
  screen_.show(progressLine(view, screen_.columns(), turn));
}

/// A second after the beginning, and then with each tenth of the work, but at most once a second
/// and at least each half minute.
void ProgressDrawer::drawPlain(const ProgressView& view, std::int64_t now) {
  const int percent = view.percent().value_or(0);
  const std::int64_t since = now - (lastPlain_ == 0 ? start_ : lastPlain_);
  const bool isFurther = percent >= lastPercent_ + kPercentStep || percent < lastPercent_;
  if (since < kBeforePlain) return;
  if (lastPlain_ != 0 && !isFurther && since < kLongestPause) return;
  lastPlain_ = now;
  lastPercent_ = percent - percent % kPercentStep;
  screen_.print("orlf " + command_ + ": " + plainProgressLine(view) + "\n");
}

void runJobWithProgress(const Job& job, Session& session) {
  const ProgressKind kind = progressKindOf(session);
  if (kind == ProgressKind::none || !NSThread::isMainThread()) return job(session);
  ProgressScreen screen(STDERR_FILENO);
  LineStreamBuffer messages([&screen](std::string_view lines) { screen.print(lines); });
  std::ostream err(&messages);
  TappedStreamBuffer output(*session.out.rdbuf(), [&screen] { screen.close(); });
  std::ostream tapped(&output);
  const bool isShared =
      kind == ProgressKind::line && isTerminal(session.out, std::cout, STDOUT_FILENO);
  Session own{.out = isShared ? tapped : session.out,
              .err = err,
              .options = session.options,
              .calendar = session.calendar,
              .exitCode = session.exitCode,
              .command = session.command};

  const auto root = std::make_shared<ORLFProgressItem>();
  root->setIndeterminate(true);
  const JobItem item(root);
  const auto drawer = std::make_shared<ProgressDrawer>(kind, session.command, screen);
  const auto indicator = std::make_shared<ORLFProgressIndicator>();
  indicator->setDelegate(drawer);
  std::atomic<bool> isDone{false};
  std::exception_ptr failure;
  std::thread worker([&] {
    try {
      job(own);
    } catch (...) {
      failure = std::current_exception();
    }
    isDone = true;
    dispatch_async(dispatch_get_main_queue(), [] {});  // wakes the main thread
  });
  serveUntil(isDone, root, indicator);
  worker.join();
  screen.close();
  session.exitCode = own.exitCode;
  if (tapped.fail()) session.out.setstate(std::ios::badbit);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace orlftool
