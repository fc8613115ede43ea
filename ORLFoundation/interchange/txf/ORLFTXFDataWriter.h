/// Writes Tax Exchange Format records, version 042: a header, summaries, details and capital gains.
///
///     ORLFTXFDataWriter writer;
///     writer.beginWriting();
///     writer.writeForHeaderAppName("App", day);               // V042, AApp, D12/31/2024, ^
///     writer.writeSummaryForTaxFormCopy(1, 2, "287", price);  // TS, N287, C1, L2, $12.50, ^
///
/// The writer keeps no data and checks none: nil prints what the formatter gives for nil, else
/// "(null)". Each record is one write to the stream. A record fails, with
/// `NSFileWriteInapplicableStringEncodingError` and no byte written, when the encoding lacks one of
/// its characters, and with the stream's error when the stream answers -1; what was written before
/// stays. One thread at a time.
#pragma once

#include <ORLFoundation/interchange/txf/ORLFTXFRecords.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSDateFormatter;
class NSNumberFormatter;
class NSOutputStream;

class ORLFTXFDataWriter : public NSObject {
 public:
  /// `stream`  One to memory, made on the first read, until set; nil lets a new one be made.
  /// Nothing closes it.
  [[nodiscard]] const std::shared_ptr<NSOutputStream>& stream();
  void setStream(std::shared_ptr<NSOutputStream> value);
  /// `encoding`  The number of an `NSStringEncoding`, UTF-8 at first.
  [[nodiscard]] NSUInteger encoding() const noexcept { return encoding_; }
  void setEncoding(NSUInteger value) noexcept { encoding_ = value; }
  /// `dateFormatter`  Made on the first read: "MM/dd/yyyy" in the current locale and zone.
  [[nodiscard]] const std::shared_ptr<NSDateFormatter>& dateFormatter();
  void setDateFormatter(std::shared_ptr<NSDateFormatter> value);
  /// `amountFormatter`  Made on the first read: the decimal style of the current locale with at
  /// least two fraction digits.
  [[nodiscard]] const std::shared_ptr<NSNumberFormatter>& amountFormatter();
  void setAmountFormatter(std::shared_ptr<NSNumberFormatter> value);
  /// `securitySharesFormatter`  Made on the first read: the decimal style of the current locale.
  [[nodiscard]] const std::shared_ptr<NSNumberFormatter>& securitySharesFormatter();
  void setSecuritySharesFormatter(std::shared_ptr<NSNumberFormatter> value);

  /// `writeStringToStream:error:`
  bool writeStringToStream(std::string_view string, NSErrorSlot error = nullptr);
  /// `beginWriting:`  Opens the stream when it was never opened. Always true.
  bool beginWriting(NSErrorSlot error = nullptr);
  /// `padString:toLength:`  The text with blanks behind it up to so many UTF-16 units; a longer one
  /// as it is.
  [[nodiscard]] static std::string padString(std::string_view string, NSUInteger toLength);

  /// `writeForHeaderAppName:exportDate:error:`
  bool writeForHeaderAppName(std::optional<std::string_view> appName,
                             const std::optional<NSDate>& exportDate, NSErrorSlot error = nullptr);
  /// `writeSummaryForTaxFormCopy:lineNumber:refNumber:amount:error:`
  bool writeSummaryForTaxFormCopy(NSInteger copy, NSInteger lineNumber, const id& refNumber,
                                  const std::optional<NSNumber>& amount,
                                  NSErrorSlot error = nullptr);
  /// `writeDetailForTaxFormCopy:lineNumber:refNumber:amount:detailDate:detailAccount:detailCheckNumber:detailPayee:detailMemo:detailCategory:error:`
  /// A summary with one more line of columns, a blank between them: the date; the account as it is,
  /// cut to 29 UTF-16 units from 31 on; the check number in 6, of a longer one what follows the
  /// fifth; payee and memo in 40, longer ones cut to 39; the category in 15, a longer one cut
  /// to 14. A cut through a character beyond the BMP leaves a half that no encoding holds.
  bool writeDetailForTaxFormCopy(const ORLFTXFDetail& detail, NSErrorSlot error = nullptr);
  /// `writeCapitalGainsLongForSecurityName:taxFormCopy:lineNumber:shares:costBasis:grossProceeds:purchaseDate:saleDate:error:`
  /// Under the reference number 323.
  bool writeCapitalGainsLongForSecurityName(const ORLFTXFCapitalGains& gains,
                                            NSErrorSlot error = nullptr);
  /// `writeCapitalGainsShortForSecurityName:taxFormCopy:lineNumber:shares:costBasis:grossProceeds:purchaseDate:saleDate:error:`
  /// Under the reference number 321.
  bool writeCapitalGainsShortForSecurityName(const ORLFTXFCapitalGains& gains,
                                             NSErrorSlot error = nullptr);

  [[nodiscard]] std::string className() const override { return "ORLFTXFDataWriter"; }

 private:
  bool writeCapitalGains(std::string_view refNumber, const ORLFTXFCapitalGains& gains,
                         NSErrorSlot error);
  /// The columns of a detail; nil when a cut went through a character.
  [[nodiscard]] std::optional<std::string> columnsOf(const ORLFTXFDetail& detail);

  std::shared_ptr<NSOutputStream> stream_;
  NSUInteger encoding_ = NSUTF8StringEncoding;
  std::shared_ptr<NSDateFormatter> dateFormatter_;
  std::shared_ptr<NSNumberFormatter> amountFormatter_;
  std::shared_ptr<NSNumberFormatter> securitySharesFormatter_;
};

}  // namespace ORLFoundation
