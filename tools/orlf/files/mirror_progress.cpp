#include "files/mirror_progress.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "progress/job_progress.h"
#include "progress/work_progress.h"

namespace orlftool {
namespace {

namespace fs = std::filesystem;

/// An item and all that it holds; links are items by themselves.
std::size_t countItems(const fs::path& item) {
  std::error_code code;
  std::size_t count = 1;
  if (!fs::is_directory(fs::symlink_status(item, code))) return count;
  fs::recursive_directory_iterator at(item, fs::directory_options::skip_permission_denied, code);
  for (; !code && at != fs::recursive_directory_iterator(); at.increment(code)) ++count;
  return count;
}

}  // namespace

MirrorProgress::MirrorProgress(std::string source, const std::string& destination)
    : source_(std::move(source)), isShown_(jobProgressItem() != nullptr) {
  if (isShown_)
    progress_ = std::make_unique<WorkProgress>("Comparing " + destination, std::nullopt);
}

MirrorProgress::~MirrorProgress() = default;

void MirrorProgress::noteCompared() {
  if (isShown_) progress_->update(static_cast<double>(++compared_));
}

void MirrorProgress::notePlanned(const std::string& item) {
  if (isShown_) planned_ += countItems(fs::path(source_) / item);
}

void MirrorProgress::noteCopied() {
  if (!isShown_) return;
  if (copied_ == 0) {
    progress_.reset();
    progress_ = std::make_unique<WorkProgress>("Copying " + source_, static_cast<double>(planned_));
  }
  progress_->update(static_cast<double>(copied_++));
}

}  // namespace orlftool
