/// A stream to a file of the system.
#pragma once

#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::stream {

class FileOutputStream final : public NSOutputStream {
 public:
  FileOutputStream(std::string_view path, bool append) : path_(path), append_(append) {}
  FileOutputStream(const FileOutputStream&) = delete;
  FileOutputStream& operator=(const FileOutputStream&) = delete;
  /// Closes the file.
  ~FileOutputStream() override;

  void open() override;
  void close() override;
  NSInteger write(std::span<const std::uint8_t> buffer) override;
  [[nodiscard]] id propertyForKey(std::string_view key) const override;

 private:
  /// Ends the stream with what `errno` says.
  void fail();
  void closeFile() noexcept;

  const std::string path_;
  const bool append_;
  int file_ = -1;
};

}  // namespace ORLFoundation::internal::stream
