#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogger.h>

namespace ORLFoundation {
namespace {

std::optional<std::string> textOf(const NSData& data) {
  return orlfStringWithData(data, NSUTF8StringEncoding);
}

std::string_view methodOf(const std::shared_ptr<NSURLRequest>& request) {
  return request ? std::string_view(request->HTTPMethod()) : std::string_view();
}

std::optional<NSURL> addressOf(const std::shared_ptr<NSURLRequest>& request) {
  return request ? request->URL() : std::nullopt;
}

}  // namespace

void ORLFURLSession::logRequest(const std::shared_ptr<ORLFURLSessionTask>& task,
                                const std::shared_ptr<NSURLRequest>& request) {
  const auto told = logger();
  if (!told) return;
  const std::string identifier = uniqueIDForTask(task);
  std::optional<std::string> body;
  if (request && request->HTTPBody()) body = textOf(*request->HTTPBody());
  told->sessionLogRequestWithID({.session = self(),
                                 .logRequestWithID = identifier,
                                 .method = methodOf(request),
                                 .url = addressOf(request),
                                 .body = body});
}

void ORLFURLSession::sessionTaskLogDataRequest(
    const std::shared_ptr<ORLFURLSessionTask>& task,
    const std::shared_ptr<NSURLRequest>& logDataRequest) {
  logRequest(task, logDataRequest);
}

void ORLFURLSession::sessionTaskLogDownloadRequest(
    const std::shared_ptr<ORLFURLSessionTask>& task,
    const std::shared_ptr<NSURLRequest>& logDownloadRequest) {
  logRequest(task, logDownloadRequest);
}

void ORLFURLSession::sessionTaskLogData(const std::shared_ptr<ORLFURLSessionTask>& task,
                                        const NSMutableData& logData, std::int64_t statusCode,
                                        const std::shared_ptr<NSURLRequest>& forRequest) {
  const auto told = logger();
  if (!told) return;
  const std::string identifier = uniqueIDForTask(task);
  const std::optional<std::string> body = textOf(logData.data());
  told->sessionLogResponse({.session = self(),
                            .logResponse = body,
                            .statusCode = statusCode,
                            .forID = identifier,
                            .method = methodOf(forRequest),
                            .url = addressOf(forRequest)});
}

void ORLFURLSession::sessionTaskLogDownload(const std::shared_ptr<ORLFURLSessionTask>& task,
                                            const std::optional<NSURL>& logDownload,
                                            std::int64_t statusCode,
                                            const std::shared_ptr<NSURLRequest>& forRequest) {
  const auto told = logger();
  if (!told) return;
  const std::string identifier = uniqueIDForTask(task);
  told->sessionLogDownload({.session = self(),
                            .logDownload = logDownload,
                            .statusCode = statusCode,
                            .forID = identifier,
                            .method = methodOf(forRequest),
                            .url = addressOf(forRequest)});
}

void ORLFURLSession::sessionTaskLogError(const std::shared_ptr<ORLFURLSessionTask>& task,
                                         const std::shared_ptr<const NSError>& logError,
                                         std::int64_t statusCode,
                                         const std::shared_ptr<NSURLRequest>& forRequest) {
  const auto told = logger();
  if (!told) return;
  const std::string identifier = uniqueIDForTask(task);
  told->sessionLogError({.session = self(),
                         .logError = logError,
                         .statusCode = statusCode,
                         .forID = identifier,
                         .method = methodOf(forRequest),
                         .url = addressOf(forRequest)});
}

}  // namespace ORLFoundation
