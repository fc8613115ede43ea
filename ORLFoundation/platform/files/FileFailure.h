/// What a piece of work with files failed with, and the error that users are told.
///
///     if (auto failure = copyItem(from, to)) return NSFillErrorSlot(error, errorOf(*failure));
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::files {

/// Which of the codes of `NSCocoaErrorDomain` tell of it.
enum class FileWork : std::uint8_t { Read, Write, Remove };

struct FileFailure {
  FileWork work = FileWork::Read;
  /// That of errno.
  int number = 0;
  std::string path;
  /// What people are told where the number's own text says too little.
  std::string reason = {};
};

/// Nothing where the work was done.
using FileOutcome = std::optional<FileFailure>;

/// The code that stands for a number of errno. What is absent is 260 to who reads and 4 to who
/// writes or removes; so is what lies beneath a thing that is no folder.
[[nodiscard]] NSInteger codeOfFailure(FileWork work, int number) noexcept;
/// Of `NSCocoaErrorDomain`, with the path, its address and the number under it.
[[nodiscard]] std::shared_ptr<const NSError> errorOf(const FileFailure& failure);
/// Fills the slot and answers false.
bool fillErrorSlot(NSErrorSlot slot, const FileFailure& failure);
/// The path that a file address names; nil, and an error, for other addresses and for a path with a
/// zero in it, which names no file.
[[nodiscard]] std::optional<std::string> pathOfFileURL(const NSURL& url, FileWork work,
                                                       NSErrorSlot error);

}  // namespace ORLFoundation::internal::files
