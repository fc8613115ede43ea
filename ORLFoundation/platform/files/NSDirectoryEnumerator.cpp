#include <ORLFoundation/platform/files/NSDirectoryEnumerator.h>

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/FolderWalk.h>

#include <cerrno>
#include <utility>

namespace ORLFoundation {

using internal::files::errorOf;
using internal::files::FileCalls;
using internal::files::FileWork;
using internal::files::FolderWalk;
using internal::files::HeldFolder;

struct NSDirectoryEnumerator::Walk {
  Walk(std::shared_ptr<FileCalls> fileCalls, const std::string& path, NSUInteger options)
      : calls(std::move(fileCalls)),
        root(*calls, path),
        walk(
            [this](const std::string& folder) {
              auto entries = root.list(folder);
              number = errno;
              return entries;
            },
            options) {}

  const std::shared_ptr<FileCalls> calls;
  HeldFolder root;
  int number = 0;
  FolderWalk walk;
  NSUInteger level = 0;
};

NSDirectoryEnumerator::NSDirectoryEnumerator(std::shared_ptr<FileCalls> calls, const NSURL& folder,
                                             NSUInteger options,
                                             NSDirectoryEnumerationErrorHandler errorHandler)
    : folder_(folder),
      errorHandler_(std::move(errorHandler)),
      walk_(std::make_unique<Walk>(std::move(calls), folder.path(), options)) {
  if (walk_->root.isOpen()) return;
  const int number = errno;
  walk_.reset();
  static_cast<void>(goesOnAfterFailure(folder_.path(), number));
}

NSDirectoryEnumerator::~NSDirectoryEnumerator() = default;

bool NSDirectoryEnumerator::goesOnAfterFailure(const std::string& path, int number) const {
  if (!errorHandler_) return true;
  return errorHandler_(NSURL::fileURLWithPath(path), errorOf({FileWork::Read, number, path}));
}

std::optional<NSURL> NSDirectoryEnumerator::nextURL() {
  while (walk_) {
    if (const auto item = walk_->walk.next()) {
      walk_->level = walk_->walk.level() + 1;
      return NSURL::fileURLWithPath(walk_->root.pathOf(item->path));
    }
    const bool goesOn =
        walk_->walk.hasFailed() &&
        goesOnAfterFailure(walk_->root.pathOf(walk_->walk.failedFolder()), walk_->number);
    if (!goesOn) walk_.reset();
  }
  return std::nullopt;
}

id NSDirectoryEnumerator::nextObject() { return nextURL(); }

void NSDirectoryEnumerator::skipDescendants() {
  if (walk_) walk_->walk.skipDescendants();
}

NSUInteger NSDirectoryEnumerator::level() const noexcept { return walk_ ? walk_->level : 0; }

}  // namespace ORLFoundation
