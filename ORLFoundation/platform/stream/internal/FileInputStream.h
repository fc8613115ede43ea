/// A stream from a file of the system.
#pragma once

#include <ORLFoundation/platform/stream/NSInputStream.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::stream {

class FileInputStream final : public NSInputStream {
 public:
  explicit FileInputStream(std::string_view path) : path_(path) {}
  FileInputStream(const FileInputStream&) = delete;
  FileInputStream& operator=(const FileInputStream&) = delete;
  /// Closes the file.
  ~FileInputStream() override;

  void open() override;
  void close() override;
  NSInteger read(std::span<std::uint8_t> buffer) override;

 private:
  /// Ends the stream with what `errno` says.
  void fail();
  void closeFile() noexcept;

  const std::string path_;
  int file_ = -1;
};

}  // namespace ORLFoundation::internal::stream
