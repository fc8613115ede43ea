/// Who is told what a session sends and receives, such as a log file (ORLFURLSessionFileLogger.h).
///
///     class Console : public ORLFURLSessionLogger {
///       void sessionLogRequestWithID(const ORLFURLSessionLoggedRequest& request) override { ... }
///       void sessionLogResponse(const ORLFURLSessionLoggedResponse& response) override { ... }
///       void sessionLogDownload(const ORLFURLSessionLoggedDownload& download) override { ... }
///       void sessionLogError(const ORLFURLSessionLoggedError& error) override { ... }
///     };
///
/// The calls come on the session's queues, several at a time. What they are given is whole and
/// unmasked: masking is the logger's work. Texts are views, to be copied by who keeps them.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace ORLFoundation {

class ORLFURLSession;

/// The arguments of `session:logRequestWithID:method:url:body:`, by their labels. A body that is
/// absent, or no UTF-8, is nil. An exchange has the same identifier in all of its calls.
struct ORLFURLSessionLoggedRequest {
  std::shared_ptr<ORLFURLSession> session;
  std::string_view logRequestWithID;
  std::string_view method;
  std::optional<NSURL> url;
  std::optional<std::string_view> body;
};

/// The arguments of `session:logResponse:statusCode:forID:method:url:`, by their labels: the body
/// of the answer, and the method and address of the request that it answers. The status is 0 where
/// there was no HTTP answer.
struct ORLFURLSessionLoggedResponse {
  std::shared_ptr<ORLFURLSession> session;
  std::optional<std::string_view> logResponse;
  std::int64_t statusCode = 0;
  std::string_view forID;
  std::string_view method;
  std::optional<NSURL> url;
};

/// The arguments of `session:logDownload:statusCode:forID:method:url:`: the same with the file that
/// was downloaded; nil for an answer without a body.
struct ORLFURLSessionLoggedDownload {
  std::shared_ptr<ORLFURLSession> session;
  std::optional<NSURL> logDownload;
  std::int64_t statusCode = 0;
  std::string_view forID;
  std::string_view method;
  std::optional<NSURL> url;
};

/// The arguments of `session:logError:statusCode:forID:method:url:`: the same with the failure,
/// null for one that has no record.
struct ORLFURLSessionLoggedError {
  std::shared_ptr<ORLFURLSession> session;
  std::shared_ptr<const NSError> logError;
  std::int64_t statusCode = 0;
  std::string_view forID;
  std::string_view method;
  std::optional<NSURL> url;
};

class ORLFURLSessionLogger {
 public:
  virtual ~ORLFURLSessionLogger() = default;

  /// `session:logRequestWithID:method:url:body:`  Before the request is sent.
  virtual void sessionLogRequestWithID(const ORLFURLSessionLoggedRequest& request) = 0;
  /// `session:logResponse:statusCode:forID:method:url:`  An answer with a body, of any status but
  /// one that asks for authentication.
  virtual void sessionLogResponse(const ORLFURLSessionLoggedResponse& response) = 0;
  /// `session:logDownload:statusCode:forID:method:url:`  An answer in a file, or without a body.
  virtual void sessionLogDownload(const ORLFURLSessionLoggedDownload& download) = 0;
  /// `session:logError:statusCode:forID:method:url:`
  virtual void sessionLogError(const ORLFURLSessionLoggedError& error) = 0;
};

}  // namespace ORLFoundation
