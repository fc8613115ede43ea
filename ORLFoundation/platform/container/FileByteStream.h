/// A file as a stream of an archive.
#pragma once

#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/files/FileCalls.h>
#include <ORLFoundation/platform/files/FileFailure.h>

#include <cstdint>
#include <span>
#include <string>

namespace ORLFoundation::internal::container {

/// Throws what happened to a file, with the error of `NSCocoaErrorDomain` for it.
[[noreturn]] void throwFileFailure(files::FileWork work, int number, const std::string& path);

class FileByteStream final : public ArchiveByteStream {
 public:
  /// `path` is for failures.
  FileByteStream(files::FileCalls& calls, files::OpenFile file, std::string path);

  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override;
  void write(std::span<const std::uint8_t> bytes) override;
  void writeAt(std::uint64_t place, std::span<const std::uint8_t> bytes) override;
  /// That of the file when the stream was made; unknown for what is no plain file.
  [[nodiscard]] std::uint64_t length() const override { return length_; }
  /// Brings the file to the disk first, where it was written to.
  void close() override;
  /// How far it was read.
  [[nodiscard]] std::uint64_t position() const noexcept { return place_; }
  [[nodiscard]] int number() const noexcept { return file_.number(); }

 private:
  files::FileCalls& calls_;
  files::OpenFile file_;
  const std::string path_;
  std::uint64_t length_ = 0;
  std::uint64_t place_ = 0;
  bool isChanged_ = false;
};

}  // namespace ORLFoundation::internal::container
