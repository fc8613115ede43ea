/// Writes Tax Exchange Format records, version 042: a header, summaries, details and capital gains.
///
///     ORLFTXFDataWriter writer;
///     writer.beginWriting();
///     writer.writeForHeaderAppName("App", day);               // V042, AApp, D12/31/2024, ^
///     writer.writeSummaryForTaxFormCopy(1, 2, "287", price);  // TS, N287, C1, L2, $12.50, ^
///
/// The writer checks nothing: nil prints what the formatter gives for nil, else "(null)".
#pragma once

#include <ORLFoundation/interchange/qif/ORLFRecordWriter.h>
#include <ORLFoundation/interchange/txf/ORLFTXFRecords.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Its `dateFormatter` has the format "MM/dd/yyyy".
class ORLFTXFDataWriter : public ORLFRecordWriter {
 public:
  /// `securitySharesFormatter`  Made on the first read: the decimal style of the current locale.
  [[nodiscard]] const std::shared_ptr<NSNumberFormatter>& securitySharesFormatter();
  void setSecuritySharesFormatter(std::shared_ptr<NSNumberFormatter> value);

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
  [[nodiscard]] std::shared_ptr<NSDateFormatter> newDateFormatter() const override;
  bool writeCapitalGains(std::string_view refNumber, const ORLFTXFCapitalGains& gains,
                         NSErrorSlot error);
  /// The columns of a detail; nil when a cut went through a character.
  [[nodiscard]] std::optional<std::string> columnsOf(const ORLFTXFDetail& detail);

  std::shared_ptr<NSNumberFormatter> securitySharesFormatter_;
};

}  // namespace ORLFoundation
