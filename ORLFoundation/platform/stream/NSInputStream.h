/// Where bytes come from one after the other: from memory, from a file, or from wherever a caller's
/// own subclass takes them.
///
///     const auto stream = NSInputStream::initWithFileAtPath("accounts.xml");
///     stream->open();
///     std::array<std::uint8_t, 4096> bytes;
///     while (const NSInteger count = stream->read(bytes)) {
///       if (count < 0) return report(stream->streamError());
///       use(std::span(bytes).first(static_cast<std::size_t>(count)));
///     }
///
/// A stream of the caller's overrides `read`, and what else it does in its own way:
///
///     class Zeros : public NSInputStream {
///       NSInteger read(std::span<std::uint8_t> buffer) override {
///         std::ranges::fill(buffer, 0);
///         return static_cast<NSInteger>(buffer.size());
///       }
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

class NSData;
class NSURL;

class NSInputStream : public NSStream {
 public:
  /// `initWithData:`
  [[nodiscard]] static std::shared_ptr<NSInputStream> initWithData(NSData data);
  /// `initWithFileAtPath:`  The file is opened with the stream.
  [[nodiscard]] static std::shared_ptr<NSInputStream> initWithFileAtPath(std::string_view path);
  /// `initWithURL:`  nil for an address that is no file's.
  [[nodiscard]] static std::shared_ptr<NSInputStream> initWithURL(const NSURL& url);

  /// `read:maxLength:`  How many bytes were put at the front of the buffer, at most as many as it
  /// holds; 0 at the end, and for an empty buffer; -1 for a failure. A stream that was not opened,
  /// or was closed, fails with EBADF and keeps its status; any other failure is the stream's end.
  virtual NSInteger read(std::span<std::uint8_t> buffer) = 0;
  /// `hasBytesAvailable`  Whether a read may give bytes: while the stream is open and no read has
  /// found the end.
  [[nodiscard]] virtual bool hasBytesAvailable() const;

  [[nodiscard]] std::string className() const override { return "NSInputStream"; }
};

}  // namespace ORLFoundation
