
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/files/NSFileHandle.h>
#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/time/NSISO8601DateFormatter.h>
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask.h>

#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::uint64_t kForItsUserAlone = 0600;

/// Of the class: files are written to by one logger at a time.
std::recursive_mutex& writing() {
  static auto& lock = *new std::recursive_mutex;
  return lock;
}

std::string_view shown(const std::optional<std::string>& text) {
  return text ? std::string_view(*text) : "(null)";
}

/// A file that is there, or a new one; null where there is neither.
std::shared_ptr<NSFileHandle> openLog(const std::string& path) {
  const auto& manager = NSFileManager::defaultManager();
  if (!manager->fileExistsAtPath(path)) {
    // Another process may have made it by now, which is as good.
    static_cast<void>(manager->createNewFileAtPath(
        path, std::nullopt,
        NSDictionary::dictionaryWithEntries({{NSFilePosixPermissions, kForItsUserAlone}})));
  }
  return NSFileHandle::fileHandleForWritingAtPath(path);
}

void appendToLog(const std::string& path, std::string_view bytes) {
  const std::lock_guard guard(writing());
  const auto handle = openLog(path);
  if (!handle) return;
  handle->appendData(bytes);
  handle->closeFile();
}

}  // namespace

ORLFURLSessionFileLogger::ORLFURLSessionFileLogger(std::optional<NSURL> fileURL,
                                                   std::string_view name)
    : fileURL_(std::move(fileURL)),
      name_(name),
      secrets_(std::make_shared<ORLFURLSessionSecretMask>()) {}

ORLFURLSessionFileLogger::~ORLFURLSessionFileLogger() = default;

bool ORLFURLSessionFileLogger::addSecret(std::string_view secret) {
  return secrets_->addSecret(secret);
}

std::string ORLFURLSessionFileLogger::now() const {
  static const auto& utc = *new auto(NSTimeZone::timeZoneWithName("UTC"));
  return NSISO8601DateFormatter::stringFromDate(NSDate::date(), *utc,
                                                NSISO8601DateFormatWithInternetDateTime);
}

void ORLFURLSessionFileLogger::logMessage(std::string_view message) {
  if (message.empty()) return;
  write(*secrets_->process(std::string(message)));
}

/// Takes an entry without secrets. Its end follows it in the same piece of memory, so that one
/// append writes both.
void ORLFURLSessionFileLogger::write(std::string entry) const {
  if (!internal::base::isUTF8(entry)) entry = wellFormedString(entry);
  const std::string path = fileURL_ ? fileURL_->path() : "";
  if (path.empty()) return NSLog(entry += '\n');
  appendToLog(path, entry += "\n\n");
}

/// Secrets are masked first: a processor might cut one in two and leave the rest.
std::optional<std::string> ORLFURLSessionFileLogger::redact(
    Kind kind, std::optional<std::string_view> text) const {
  const Processors applied = processors(kind);
  try {
    std::optional<std::string> redacted;
    if (text) redacted = secrets_->process(std::string(*text));
    if (!applied) return redacted;
    for (const Processor& processor : *applied) redacted = processor->process(std::move(redacted));
    return redacted;
  } catch (...) {
    NSLog("A text was left out of a session's log: it could not be masked.");
    return std::nullopt;
  }
}

std::optional<std::string> ORLFURLSessionFileLogger::redactRequestURL(
    const std::optional<NSURL>& url) const {
  return redact(RequestURL,
                url ? std::optional<std::string_view>(url->absoluteString()) : std::nullopt);
}

std::optional<std::string> ORLFURLSessionFileLogger::redactRequestBody(
    std::optional<std::string_view> body) const {
  return redact(RequestBody, body);
}

std::optional<std::string> ORLFURLSessionFileLogger::redactResponseBody(
    std::optional<std::string_view> body) const {
  return redact(ResponseBody, body);
}

std::optional<std::string> ORLFURLSessionFileLogger::redactDownloadURL(
    const std::optional<NSURL>& url) const {
  return redact(DownloadURL,
                url ? std::optional<std::string_view>(url->absoluteString()) : std::nullopt);
}

std::optional<std::string> ORLFURLSessionFileLogger::redactError(
    const std::shared_ptr<const NSError>& error) const {
  if (!error) return redact(Error, std::nullopt);
  return redact(Error, error->description());
}

/// The first two lines of an entry: "SENT" and "POST", or "RECEIVED" and "200 POST".
std::string ORLFURLSessionFileLogger::head(std::string_view what, std::string_view identifier,
                                           std::string_view request,
                                           const std::optional<NSURL>& url) const {
  std::string first = "<!-- ";
  first.append(what).append(" BY ").append(name_).append(" (").append(identifier);
  first.append(") ON ").append(now()).append(" -->\n").append(request).append(" ");
  const auto masked = secrets_->process(std::move(first));
  return *masked + std::string(shown(redactRequestURL(url))) + "\n";
}

void ORLFURLSessionFileLogger::sessionLogRequestWithID(const ORLFURLSessionLoggedRequest& request) {
  std::string entry = head("SENT", request.logRequestWithID, request.method, request.url);
  const auto body = redactRequestBody(request.body);
  if (body && !body->empty()) entry.append(*body).append("\n");
  write(std::move(entry));
}

void ORLFURLSessionFileLogger::sessionLogResponse(const ORLFURLSessionLoggedResponse& response) {
  std::string entry =
      head("RECEIVED", response.forID,
           std::to_string(response.statusCode) + " " + std::string(response.method), response.url);
  const auto body = redactResponseBody(response.logResponse);
  if (body && !body->empty()) entry.append(*body).append("\n");
  write(std::move(entry));
}

void ORLFURLSessionFileLogger::sessionLogDownload(const ORLFURLSessionLoggedDownload& download) {
  std::string entry =
      head("RECEIVED", download.forID,
           std::to_string(download.statusCode) + " " + std::string(download.method), download.url);
  write(entry.append(shown(redactDownloadURL(download.logDownload))).append("\n"));
}

void ORLFURLSessionFileLogger::sessionLogError(const ORLFURLSessionLoggedError& error) {
  std::string entry =
      head("RECEIVED", error.forID,
           std::to_string(error.statusCode) + " " + std::string(error.method), error.url);
  const auto text = redactError(error.logError);
  write(entry.append(text && !text->empty() ? *text : "Missing Error").append("\n"));
}

}  // namespace ORLFoundation
