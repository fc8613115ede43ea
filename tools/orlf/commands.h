/// The commands of the tool, one file each.
#pragma once

#include <functional>

namespace orlftool {

class Options;
struct Session;

/// Does what a command is for, with the words that were read.
using Job = std::function<void(Session&)>;

/// `orlf dates`  The dates of a recurrence rule.
[[nodiscard]] Job declareDatesCommand(Options& options);
/// `orlf describe`  The English sentence of a recurrence rule.
[[nodiscard]] Job declareDescribeCommand(Options& options);
/// `orlf schedule`  The dates of a usual payment schedule.
[[nodiscard]] Job declareScheduleCommand(Options& options);
/// `orlf fiscal`  A date in a fiscal year.
[[nodiscard]] Job declareFiscalCommand(Options& options);
/// `orlf infer-dates`  The order of day, month and year in a file's dates.
[[nodiscard]] Job declareInferDatesCommand(Options& options);
/// `orlf date`  Dates as people type them.
[[nodiscard]] Job declareDateCommand(Options& options);
/// `orlf span`  A span of dates in words.
[[nodiscard]] Job declareSpanCommand(Options& options);
/// `orlf plan`  Balances and contributions of a plan file.
[[nodiscard]] Job declarePlanCommand(Options& options);
/// `orlf loan`  The level payment of a loan, and its amortization table.
[[nodiscard]] Job declareLoanCommand(Options& options);
/// `orlf irr`  The internal rate of return of dated cash flows.
[[nodiscard]] Job declareIrrCommand(Options& options);
/// `orlf mirror`  A folder brought into line with another one.
[[nodiscard]] Job declareMirrorCommand(Options& options);
/// `orlf archive`  A folder packed into one file, plain or sealed.
[[nodiscard]] Job declareArchiveCommand(Options& options);
/// `orlf extract`  A folder made of such a file.
[[nodiscard]] Job declareExtractCommand(Options& options);
/// `orlf store-info`  The metadata of a store file.
[[nodiscard]] Job declareStoreInfoCommand(Options& options);
/// `orlf same-file`  Whether two paths lead to one file.
[[nodiscard]] Job declareSameFileCommand(Options& options);
/// `orlf axis`  The scale of a chart axis.
[[nodiscard]] Job declareAxisCommand(Options& options);
/// `orlf amount`  Amounts as people type them.
[[nodiscard]] Job declareAmountCommand(Options& options);
/// `orlf calc`  Sums as people type them.
[[nodiscard]] Job declareCalcCommand(Options& options);
/// `orlf percent`  A percentage as people type it.
[[nodiscard]] Job declarePercentCommand(Options& options);
/// `orlf round`  A decimal rounded.
[[nodiscard]] Job declareRoundCommand(Options& options);
/// `orlf decimal`  Sums on decimals.
[[nodiscard]] Job declareDecimalCommand(Options& options);
/// `orlf keychain`  Passwords in the desktop's keychain.
[[nodiscard]] Job declareKeychainCommand(Options& options);
/// `orlf link`  Which handler takes a link.
[[nodiscard]] Job declareLinkCommand(Options& options);
/// `orlf progress-demo`  How progress is shown.
[[nodiscard]] Job declareProgressDemoCommand(Options& options);
/// `orlf title`  Texts in title case.
[[nodiscard]] Job declareTitleCommand(Options& options);
/// `orlf email`  Whether texts are e-mail addresses.
[[nodiscard]] Job declareEmailCommand(Options& options);
/// `orlf template-image`  A picture drawn in one color.
[[nodiscard]] Job declareTemplateImageCommand(Options& options);
/// `orlf csv`  The rows of separated text.
[[nodiscard]] Job declareCsvCommand(Options& options);
/// `orlf ofx2xml`  A statement in SGML as XML.
[[nodiscard]] Job declareOfxToXmlCommand(Options& options);
/// `orlf xml-escape`  Texts with entities.
[[nodiscard]] Job declareXmlEscapeCommand(Options& options);
/// `orlf xml-unescape`  Texts without entities.
[[nodiscard]] Job declareXmlUnescapeCommand(Options& options);
/// `orlf qif`  A bank's table as QIF.
[[nodiscard]] Job declareQifCommand(Options& options);
/// `orlf txf`  A table of sales or tax amounts as TXF.
[[nodiscard]] Job declareTxfCommand(Options& options);
/// `orlf xml-events`  The events of an XML document.
[[nodiscard]] Job declareXmlEventsCommand(Options& options);
/// `orlf process`  Checks, draws and walks a process definition.
[[nodiscard]] Job declareProcessCommand(Options& options);
/// `orlf watch`  What happens to a file, or to the names in a directory.
[[nodiscard]] Job declareWatchCommand(Options& options);
/// `orlf fetch`  What stands at an address.
[[nodiscard]] Job declareFetchCommand(Options& options);
/// `orlf modified`  When that was last modified.
[[nodiscard]] Job declareModifiedCommand(Options& options);
/// `orlf user-agent`  What an application tells servers it is.
[[nodiscard]] Job declareUserAgentCommand(Options& options);
/// `orlf reachable`  Whether there is a way to a host.
[[nodiscard]] Job declareReachableCommand(Options& options);
/// `orlf query-string`  The queries of addresses.
[[nodiscard]] Job declareQueryStringCommand(Options& options);
/// `orlf store`  Passwords for services in one encrypted file.
[[nodiscard]] Job declareStoreCommand(Options& options);
/// `orlf hash`  Digests of files.
[[nodiscard]] Job declareHashCommand(Options& options);
/// `orlf base64`  Base64 text, both ways.
[[nodiscard]] Job declareBase64Command(Options& options);
/// `orlf gzip`  Compression, both ways.
[[nodiscard]] Job declareGzipCommand(Options& options);

}  // namespace orlftool
