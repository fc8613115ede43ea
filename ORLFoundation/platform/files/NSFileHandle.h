/// An open file that is written to at its end, by several processes in turn.
///
///     if (const auto handle = NSFileHandle::fileHandleForWritingAtPath(path)) {
///       handle->appendData("entry\n");
///       handle->closeFile();
///     }
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

namespace internal::files {
class FileCalls;
class OpenFile;
}  // namespace internal::files

/// For one thread at a time.
class NSFileHandle final : public NSObject {
 public:
  /// `fileHandleForWritingAtPath:`  null where there is no such file, for a folder, and for what
  /// may not be written to. A pipe that nobody reads is no wait.
  [[nodiscard]] static std::shared_ptr<NSFileHandle> fileHandleForWritingAtPath(
      const std::string& path, const std::shared_ptr<internal::files::FileCalls>& calls = nullptr);
  /// Use the operation above.
  NSFileHandle(std::shared_ptr<internal::files::FileCalls> calls, internal::files::OpenFile file);
  /// Closes the file.
  ~NSFileHandle() override;

  /// `seekToEndOfFile`  Where the end is; nil for what has no places, such as a pipe.
  std::optional<std::uint64_t> seekToEndOfFile();
  /// `writeData:`  Goes on behind what was written, and at the beginning of the file before
  /// anything was. false where not all bytes were taken.
  [[nodiscard]] bool writeData(std::string_view data);
  /// Puts bytes behind the end of the file, all of them or, where the disk is full, none: the file
  /// is cut back. No other handle, of this process or another, appends meanwhile; it waits.
  bool appendData(std::string_view data);
  /// `closeFile`  All else fails afterwards.
  void closeFile();

  [[nodiscard]] std::string className() const override { return "NSFileHandle"; }

 private:
  const std::shared_ptr<internal::files::FileCalls> calls_;
  const std::unique_ptr<internal::files::OpenFile> file_;
  std::uint64_t position_ = 0;
};

}  // namespace ORLFoundation
