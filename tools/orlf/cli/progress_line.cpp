#include "cli/progress_line.h"

#include <unistd.h>

#include <iostream>

namespace orlftool {
namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;
constexpr std::uint64_t kStep = 16 * kMegabyte;

bool isTerminal(const std::ostream& err) {
  return err.rdbuf() == std::cerr.rdbuf() && ::isatty(STDERR_FILENO) != 0;
}

}  // namespace

ProgressLine::ProgressLine(std::ostream& err, std::optional<std::uint64_t> total)
    : ProgressLine(err, total, isTerminal(err)) {}

ProgressLine::ProgressLine(std::ostream& err, std::optional<std::uint64_t> total, bool isShown)
    : err_(err), total_(total), isShown_(isShown), next_(kStep) {}

ProgressLine::~ProgressLine() { clear(); }

void ProgressLine::update(std::uint64_t done) {
  if (!isShown_ || done < next_) return;
  next_ = done - done % kStep + kStep;
  isWritten_ = true;
  err_ << '\r' << done / kMegabyte << " MB";
  if (total_ && *total_ > 0)
    err_ << " of " << *total_ / kMegabyte << " MB, " << done * 100 / *total_ << "%";
  err_ << std::flush;
}

void ProgressLine::clear() {
  if (!isWritten_) return;
  isWritten_ = false;
  err_ << "\r\x1B[K" << std::flush;
}

}  // namespace orlftool
