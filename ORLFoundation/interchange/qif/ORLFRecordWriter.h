/// What the writers of QIF and TXF have in common: where their records go, in which encoding, and
/// how dates and amounts are printed. A writer holds no records: each is one write to the stream.
/// It fails, with `NSFileWriteInapplicableStringEncodingError` and no byte written, when the
/// encoding lacks one of its characters, and with the stream's error when the stream answers -1;
/// what was written before stays. Texts are written as they stand: a line end in one would begin a
/// line of its own. One thread at a time.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <string_view>

namespace ORLFoundation {

class NSDateFormatter;
class NSNumberFormatter;
class NSOutputStream;

class ORLFRecordWriter : public NSObject {
 public:
  /// `stream`  One to memory, made on the first read, until set; nil lets a new one be made.
  /// Nothing closes it.
  [[nodiscard]] const std::shared_ptr<NSOutputStream>& stream();
  void setStream(std::shared_ptr<NSOutputStream> value);
  /// `encoding`  The number of an `NSStringEncoding`, UTF-8 at first. Each write in
  /// `NSUTF16StringEncoding` begins with a byte-order mark.
  [[nodiscard]] NSUInteger encoding() const noexcept { return encoding_; }
  void setEncoding(NSUInteger value) noexcept { encoding_ = value; }
  /// `dateFormatter`  Made on the first read, in the current locale and zone, as the writer of a
  /// format tells.
  [[nodiscard]] const std::shared_ptr<NSDateFormatter>& dateFormatter();
  void setDateFormatter(std::shared_ptr<NSDateFormatter> value);
  /// `amountFormatter`  Made on the first read: the decimal style of the current locale with at
  /// least two fraction digits.
  [[nodiscard]] const std::shared_ptr<NSNumberFormatter>& amountFormatter();
  void setAmountFormatter(std::shared_ptr<NSNumberFormatter> value);

  /// `writeStringToStream:error:`
  bool writeStringToStream(std::string_view string, NSErrorSlot error = nullptr);
  /// `beginWriting:`  Opens the stream when it was never opened. Always true.
  bool beginWriting(NSErrorSlot error = nullptr);

 private:
  [[nodiscard]] virtual std::shared_ptr<NSDateFormatter> newDateFormatter() const = 0;

  std::shared_ptr<NSOutputStream> stream_;
  NSUInteger encoding_ = NSUTF8StringEncoding;
  std::shared_ptr<NSDateFormatter> dateFormatter_;
  std::shared_ptr<NSNumberFormatter> amountFormatter_;
};

}  // namespace ORLFoundation
