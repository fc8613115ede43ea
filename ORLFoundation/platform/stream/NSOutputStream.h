/// Where bytes go one after the other: to memory, to a file, or wherever a caller's own subclass
/// takes them.
///
///     const auto stream = NSOutputStream::initToMemory();
///     stream->open();
///     stream->write(bytes);
///     stream->propertyForKey(NSStreamDataWrittenToMemoryStreamKey).as<NSData>();  // the bytes
///
/// A stream of the caller's overrides `write`, and what else it does in its own way:
///
///     class Counter : public NSOutputStream {
///       NSInteger write(std::span<const std::uint8_t> buffer) override {
///         count_ += buffer.size();
///         return static_cast<NSInteger>(buffer.size());
///       }
///       std::size_t count_ = 0;
///     };
///
/// One thread at a time.
#pragma once

#include <ORLFoundation/platform/stream/NSStream.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// The `NSData` of all bytes that a stream to memory has taken, before it is closed and after.
inline constexpr std::string_view NSStreamDataWrittenToMemoryStreamKey =
    "kCFStreamPropertyDataWritten";
/// The place in the file, in bytes from its start, at which an open stream to a file writes next.
inline constexpr std::string_view NSStreamFileCurrentOffsetKey =
    "kCFStreamPropertyFileCurrentOffset";

class NSOutputStream : public NSStream {
 public:
  /// `initToMemory`  Its bytes are found under `NSStreamDataWrittenToMemoryStreamKey`.
  [[nodiscard]] static std::shared_ptr<NSOutputStream> initToMemory();
  /// `initToFileAtPath:append:`  The file is made, or emptied unless `append`, when the stream is
  /// opened.
  [[nodiscard]] static std::shared_ptr<NSOutputStream> initToFileAtPath(std::string_view path,
                                                                        bool append);

  /// `hasSpaceAvailable`  Whether a write may take bytes.
  [[nodiscard]] virtual bool hasSpaceAvailable() const;

  /// `write:maxLength:`  How many bytes from the front of the buffer were taken, which may be fewer
  /// than all; -1 for a failure. A stream that is not open fails with EBADF and keeps its status;
  /// any other failure is the stream's end.
  virtual NSInteger write(std::span<const std::uint8_t> buffer) = 0;
  [[nodiscard]] std::string className() const override { return "NSOutputStream"; }
};

}  // namespace ORLFoundation
