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

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSError;

/// Of these an output stream passes through `NotOpen`, `Open`, `Closed` and `Error`; the others are
/// for streams of callers.
enum NSStreamStatus : NSUInteger {
  NSStreamStatusNotOpen = 0,
  NSStreamStatusOpening = 1,
  NSStreamStatusOpen = 2,
  NSStreamStatusReading = 3,
  NSStreamStatusWriting = 4,
  NSStreamStatusAtEnd = 5,
  NSStreamStatusClosed = 6,
  NSStreamStatusError = 7,
};

/// The `NSData` of all bytes that a stream to memory has taken, before it is closed and after.
inline constexpr std::string_view NSStreamDataWrittenToMemoryStreamKey =
    "kCFStreamPropertyDataWritten";
/// The place in the file, in bytes from its start, at which an open stream to a file writes next.
inline constexpr std::string_view NSStreamFileCurrentOffsetKey =
    "kCFStreamPropertyFileCurrentOffset";

class NSOutputStream : public NSObject {
 public:
  /// `initToMemory`  Its bytes are found under `NSStreamDataWrittenToMemoryStreamKey`.
  [[nodiscard]] static std::shared_ptr<NSOutputStream> initToMemory();
  /// `initToFileAtPath:append:`  The file is made, or emptied unless `append`, when the stream is
  /// opened.
  [[nodiscard]] static std::shared_ptr<NSOutputStream> initToFileAtPath(std::string_view path,
                                                                        bool append);

  /// `open`  Only from `NSStreamStatusNotOpen`; a stream that was closed stays closed. What fails
  /// is told by the status and by `streamError`.
  virtual void open();
  /// `close`  Nothing happens to a stream that is not open.
  virtual void close();
  /// `streamStatus`
  [[nodiscard]] virtual NSStreamStatus streamStatus() const { return status_; }
  /// `streamError`  The last failure, an `NSPOSIXErrorDomain` record of the system's code; nil
  /// before any.
  [[nodiscard]] virtual std::shared_ptr<const NSError> streamError() const { return error_; }
  /// `hasSpaceAvailable`  Whether a write may take bytes.
  [[nodiscard]] virtual bool hasSpaceAvailable() const;

  /// `write:maxLength:`  How many bytes from the front of the buffer were taken, which may be fewer
  /// than all; -1 for a failure. A stream that is not open fails with EBADF and keeps its status;
  /// any other failure is the stream's end.
  virtual NSInteger write(std::span<const std::uint8_t> buffer) = 0;
  /// `propertyForKey:`  nil for what the stream does not have.
  [[nodiscard]] virtual id propertyForKey(std::string_view key) const;

  [[nodiscard]] std::string className() const override { return "NSOutputStream"; }

 protected:
  /// What `open` and `close` of the base class set.
  void setStreamStatus(NSStreamStatus status) noexcept { status_ = status; }
  /// nil forgets the last one.
  void setStreamError(std::shared_ptr<const NSError> error) noexcept;

 private:
  NSStreamStatus status_ = NSStreamStatusNotOpen;
  std::shared_ptr<const NSError> error_;
};

}  // namespace ORLFoundation
