#include "progress/progress_screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

#include "progress/progress_text.h"

namespace orlftool {
namespace {

constexpr std::string_view kRowAbove = "\x1B[A\x1B[K";

std::atomic<ProgressScreen*> presentScreen{nullptr};

}  // namespace

ProgressScreen::ProgressScreen(int descriptor) : descriptor_(descriptor) { presentScreen = this; }

ProgressScreen::~ProgressScreen() {
  presentScreen = nullptr;
  close();
}

std::size_t ProgressScreen::columns() const {
  struct winsize size {};
  constexpr std::size_t kUsual = 80;
  const bool isKnown = ::ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : kUsual;
}

void ProgressScreen::show(const std::string& line) {
  const std::lock_guard guard(lock_);
  if (isClosed_ || isPaused_ || line == shown_) return;
  std::string output;
  erase(output);
  output += line;
  shown_ = line;
  setRowToErase(descriptor_);
  write(output);
}

void ProgressScreen::print(std::string_view lines) {
  const std::lock_guard guard(lock_);
  std::string output;
  erase(output);
  output += lines;
  write(output);
}

void ProgressScreen::close() {
  const std::lock_guard guard(lock_);
  std::string output;
  erase(output);
  write(output);
  isClosed_ = true;
}

void ProgressScreen::pause() {
  const std::lock_guard guard(lock_);
  std::string output;
  erase(output);
  write(output);
  isPaused_ = true;
}

void ProgressScreen::resume() {
  const std::lock_guard guard(lock_);
  isPaused_ = false;
}

ProgressPause::ProgressPause() : screen_(presentScreen) {
  if (screen_ != nullptr) screen_->pause();
}

ProgressPause::~ProgressPause() {
  if (screen_ != nullptr) screen_->resume();
}

void ProgressScreen::erase(std::string& output) {
  if (shown_.empty()) return;
  output += kEraseRow;
  const std::size_t width = columnsOfText(shown_);
  for (std::size_t row = columns(); row < width; row += columns()) output += kRowAbove;
  shown_.clear();
  setRowToErase(-1);
}

void ProgressScreen::write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;  // nobody reads: the job goes on
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace orlftool
