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
using internal::files::pathOfFileURL;

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
    : errorHandler_(std::move(errorHandler)) {
  std::shared_ptr<const NSError> error;
  if (const auto path = pathOfFileURL(folder, FileWork::Read, &error)) {
    walk_ = std::make_unique<Walk>(std::move(calls), *path, options);
    if (walk_->root.isOpen()) return;
    error = errorOf({FileWork::Read, errno, *path});
    walk_.reset();
  }
  static_cast<void>(goesOnAfterFailure(folder, error));
}

NSDirectoryEnumerator::~NSDirectoryEnumerator() = default;

bool NSDirectoryEnumerator::goesOnAfterFailure(const NSURL& url,
                                               const std::shared_ptr<const NSError>& error) const {
  return !errorHandler_ || errorHandler_(url, error);
}

std::optional<NSURL> NSDirectoryEnumerator::nextURL() {
  while (walk_) {
    if (const auto item = walk_->walk.next()) {
      walk_->level = walk_->walk.level() + 1;
      return NSURL::fileURLWithPath(walk_->root.pathOf(item->path));
    }
    bool goesOn = walk_->walk.hasFailed();
    if (goesOn) {
      const std::string path = walk_->root.pathOf(walk_->walk.failedFolder());
      goesOn = goesOnAfterFailure(NSURL::fileURLWithPath(path),
                                  errorOf({FileWork::Read, walk_->number, path}));
    }
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
