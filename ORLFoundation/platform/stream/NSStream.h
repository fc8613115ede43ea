/// What streams of bytes have in common, in and out: they are opened once, closed once, and tell
/// what failed.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSError;

/// Of these the library's streams pass through `NotOpen`, `Open`, `Closed` and `Error`, and those
/// that are read through `AtEnd`; the others are for streams of callers.
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

class NSStream : public NSObject {
 public:
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
  /// `propertyForKey:`  nil for what the stream does not have.
  [[nodiscard]] virtual id propertyForKey(std::string_view key) const;

  [[nodiscard]] std::string className() const override { return "NSStream"; }

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
