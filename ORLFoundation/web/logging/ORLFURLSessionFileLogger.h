/// A log file of what sessions send and receive, for people to read.
///
///     const auto logger = std::make_shared<ORLFURLSessionFileLogger>(file, "Bank");
///     logger->addSecret(password);
///     logger->addRequestBodyProcessor(
///         ORLFURLSessionLogReplacement::initWithJSONFieldName("password", "***"));
///
/// An entry is two or three lines and two line ends more:
///
/// | `<!-- SENT BY Bank (0x55d0-0x7f1a) ON 2026-11-12T11:08:06Z -->`
/// | `POST https://example.com/login`
/// | `{"user":"ann","password":"***"}`
///
/// Before a text gets there it loses the secrets that were named to the logger, and then passes the
/// processors of its kind, in the order of their addition. Any thread may log, and several loggers,
/// of several processes too, may share a file: entries never mix. The file is made for its user
/// alone (mode 0600), and nothing is ever removed from it.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogProcessor.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogger.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFURLSessionSecretMask;

class ORLFURLSessionFileLogger : public NSObject, public ORLFURLSessionLogger {
 public:
  using Processor = std::shared_ptr<ORLFURLSessionLogProcessor>;
  /// nil until the first one is added.
  using Processors = std::optional<std::vector<Processor>>;

  /// `initWithFileURL:name:`  The name stands in each entry. With nil for the file, entries go to
  /// the log (NSLog.h).
  ORLFURLSessionFileLogger(std::optional<NSURL> fileURL, std::string_view name);
  ~ORLFURLSessionFileLogger() override;

  [[nodiscard]] const std::optional<NSURL>& fileURL() const noexcept { return fileURL_; }
  [[nodiscard]] const std::string& name() const noexcept { return name_; }

  [[nodiscard]] Processors requestURLProcessors() const;
  void setRequestURLProcessors(Processors processors);
  [[nodiscard]] Processors requestBodyProcessors() const;
  void setRequestBodyProcessors(Processors processors);
  [[nodiscard]] Processors responseBodyProcessors() const;
  void setResponseBodyProcessors(Processors processors);
  [[nodiscard]] Processors downloadURLProcessors() const;
  void setDownloadURLProcessors(Processors processors);
  [[nodiscard]] Processors errorProcessors() const;
  void setErrorProcessors(Processors processors);

  /// `addRequestURLProcessor:`, `addRequestBodyProcessor:`, `addResponseBodyProcessor:`,
  /// `addDownloadURLProcessor:`, `addErrorProcessor:`  One that is added twice is applied twice.
  /// null raises `NSInvalidArgumentException`.
  void addRequestURLProcessor(const Processor& processor);
  void addRequestBodyProcessor(const Processor& processor);
  void addResponseBodyProcessor(const Processor& processor);
  void addDownloadURLProcessor(const Processor& processor);
  void addErrorProcessor(const Processor& processor);
  /// `removeRequestURLProcessor:`, `removeRequestBodyProcessor:`, `removeResponseBodyProcessor:`,
  /// `removeDownloadURLProcessor:`, `removeErrorProcessor:`  Takes away all that equal it.
  void removeRequestURLProcessor(const Processor& processor);
  void removeRequestBodyProcessor(const Processor& processor);
  void removeResponseBodyProcessor(const Processor& processor);
  void removeDownloadURLProcessor(const Processor& processor);
  void removeErrorProcessor(const Processor& processor);

  /// Names a text that is to stand nowhere in the log, in no spelling that
  /// ORLFURLSessionSecretMask.h tells of. false, and nothing is masked, for one of under 6 bytes.
  bool addSecret(std::string_view secret);

  /// `logMessage:`  Appends the message, without the secrets, and two line ends. An empty one does
  /// nothing. What cannot be written is left out without a word: a log never fails a request.
  void logMessage(std::string_view message);
  /// `now`  The present moment in UTC, as "2026-11-12T11:08:06Z".
  [[nodiscard]] std::string now() const;

  /// `redactRequestURL:`, `redactRequestBody:`, `redactResponseBody:`, `redactDownloadURL:`,
  /// `redactError:`  The text as it stands in the log: an address, a body, or the description of an
  /// error (its `debugDescription` is the same). nil stays nil unless a processor makes a text of
  /// it. What a processor throws on is left out: nil.
  [[nodiscard]] std::optional<std::string> redactRequestURL(const std::optional<NSURL>& url) const;
  [[nodiscard]] std::optional<std::string> redactRequestBody(
      std::optional<std::string_view> body) const;
  [[nodiscard]] std::optional<std::string> redactResponseBody(
      std::optional<std::string_view> body) const;
  [[nodiscard]] std::optional<std::string> redactDownloadURL(const std::optional<NSURL>& url) const;
  [[nodiscard]] std::optional<std::string> redactError(
      const std::shared_ptr<const NSError>& error) const;

  void sessionLogRequestWithID(const ORLFURLSessionLoggedRequest& request) override;
  void sessionLogResponse(const ORLFURLSessionLoggedResponse& response) override;
  void sessionLogDownload(const ORLFURLSessionLoggedDownload& download) override;
  void sessionLogError(const ORLFURLSessionLoggedError& error) override;

  [[nodiscard]] std::string className() const override { return "ORLFURLSessionFileLogger"; }

 private:
  enum Kind : std::uint8_t { RequestURL, RequestBody, ResponseBody, DownloadURL, Error, kKinds };

  [[nodiscard]] Processors processors(Kind kind) const;
  void setProcessors(Kind kind, Processors processors);
  void add(Kind kind, const Processor& processor);
  void remove(Kind kind, const Processor& processor);
  [[nodiscard]] std::optional<std::string> redact(Kind kind,
                                                  std::optional<std::string_view> text) const;
  [[nodiscard]] std::string head(std::string_view what, std::string_view identifier,
                                 std::string_view request, const std::optional<NSURL>& url) const;
  void write(std::string entry) const;

  const std::optional<NSURL> fileURL_;
  const std::string name_;
  const std::shared_ptr<ORLFURLSessionSecretMask> secrets_;
  mutable std::recursive_mutex lock_;
  Processors processors_[kKinds];
};

}  // namespace ORLFoundation
