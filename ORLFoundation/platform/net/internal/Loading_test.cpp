#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionDelegate.h>
#include <ORLFoundation/platform/net/internal/AnswerHead.h>
#include <ORLFoundation/platform/net/internal/DataAddress.h>
#include <ORLFoundation/platform/net/internal/LoadErrors.h>
#include <ORLFoundation/platform/net/internal/LoadingSession.h>
#include <ORLFoundation/platform/net/internal/Redirect.h>
#include <ORLFoundation/platform/net/internal/Transfer.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <openssl/x509_vfy.h>
#include <tests/support/Waiting.h>

#include <atomic>
#include <cerrno>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;
using namespace ORLFoundation::internal::net;

AnswerHead headOf(std::string_view text) {
  AnswerHead head;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::size_t length = end == std::string_view::npos ? text.size() : end + 1;
    EXPECT_TRUE(head.take(text.substr(0, length)));
    text.remove_prefix(length);
  }
  return head;
}

TEST(AnswerHead, ReadsStatusVersionAndFields) {
  const AnswerHead head = headOf("HTTP/1.1 404 Not Found\r\nA: 1\r\nB:2 \r\n\r\n");
  EXPECT_TRUE(head.isWhole());
  EXPECT_EQ(head.status(), 404);
  EXPECT_EQ(head.version(), "HTTP/1.1");
  EXPECT_EQ(head.fields(), (NSHTTPHeaderFields{{"A", "1"}, {"B", "2"}}));
  EXPECT_EQ(headOf("HTTP/2 200\r\n\r\n").version(), "HTTP/2");
  EXPECT_FALSE(headOf("HTTP/1.1 200 OK\r\nA: 1\r\n").isWhole());
  EXPECT_FALSE(headOf("HTTP/1.1 199 Interim\r\n\r\n").isWhole());
  for (const char* none : {"HTTP/1.1 103 Hints\r\n\r\nHTTP/1.1 x\r\n", "HTTP/1.1\r\n"})
    EXPECT_EQ(headOf(none).status(), 0) << none;
}

TEST(AnswerHead, JoinsRepeatedAndFoldedFields) {
  const AnswerHead head =
      headOf("HTTP/1.1 200 OK\r\nA: 1\r\na: 2\r\nB: x\r\n  y\r\n\tz\r\nno colon\r\n : v\r\n\r\n");
  EXPECT_EQ(head.fields(), (NSHTTPHeaderFields{{"A", "1, 2"}, {"B", "x y z"}}));
  EXPECT_TRUE(headOf("HTTP/1.1 200 OK\r\n folded\r\n\r\n").fields().empty());
}

TEST(AnswerHead, PassesOverInterimAnswersAndTrailers) {
  const AnswerHead head =
      headOf("HTTP/1.1 103 Hints\r\nA: 1\r\n\r\nHTTP/1.1 200 OK\r\nB: 2\r\n\r\nTrailer: 3\r\n");
  EXPECT_TRUE(head.isWhole());
  EXPECT_EQ(head.status(), 200);
  EXPECT_EQ(head.fields(), (NSHTTPHeaderFields{{"B", "2"}}));
}

TEST(AnswerHead, HasItsStatusInItsFirstLineAlone) {
  const AnswerHead head = headOf(
      "HTTP/1.1 201 Made\r\nA: 1\r\nHTTP/1.0 404 Not Found\r\n x\r\nHTTP/x: 2\r\nB: 3\r\n\r\n");
  EXPECT_EQ(head.status(), 201);
  EXPECT_EQ(head.version(), "HTTP/1.1");
  EXPECT_EQ(head.fields(), (NSHTTPHeaderFields{{"A", "1"}, {"B", "3"}, {"HTTP/x", "2"}}));
}

TEST(AnswerHead, ReadsOtherBytesAsLatin1) {
  EXPECT_EQ(headOf("HTTP/1.1 200 OK\nA: r\xE9\n\n").fields().find("A")->second, "r\xC3\xA9");
  EXPECT_EQ(headOf("HTTP/1.1 200 OK\nA: r\xC3\xA9\n\n").fields().find("A")->second, "r\xC3\xA9");
}

TEST(AnswerHead, RefusesFieldsOfTheBodysLengthThatLibcurlPassesOver) {
  for (const char* line : {"Content-Length : 5\r\n", "content-length\t:5\r\n",
                           "Transfer-Encoding : chunked\r\n", "TRANSFER-ENCODING  :x\n"}) {
    AnswerHead head;
    EXPECT_TRUE(head.take("HTTP/1.1 200 OK\r\n"));
    EXPECT_FALSE(head.take(line)) << line;
  }
  for (const char* line :
       {"Content-Length:\r\n", "Content-Length: 5\r\n", "transfer-encoding:\r\n"}) {
    AnswerHead head;
    EXPECT_TRUE(head.take("HTTP/1.1 200 OK\r\n"));
    EXPECT_TRUE(head.take(line));
    EXPECT_FALSE(head.take(" 5\r\n")) << line;
  }
  const AnswerHead head = headOf(
      "HTTP/1.1 103 Hints\r\nContent-Length: 5\r\n\r\nHTTP/1.1 200 OK\r\n folded\r\n"
      "Content-Length: 5\r\nContent-Type : text/csv\r\n ;a=b\r\nContent-Lengths : 6\r\n\r\n");
  EXPECT_EQ(head.fields(), (NSHTTPHeaderFields{{"Content-Length", "5"},
                                               {"Content-Lengths", "6"},
                                               {"Content-Type", "text/csv ;a=b"}}));
}

TEST(AnswerHead, KnowsWhetherItLeadsToOnePlace) {
  struct Row {
    const char* fields;
    bool isClear;
    const char* location;
  };
  const Row rows[] = {
      {"A: 1\r\nA: 2\r\n", true, ""},
      {"Location: /a, b\r\n", true, "/a, b"},
      {"Location : /a\r\nlocation:/a \r\nLOCATION: /a\r\n", true, "/a"},
      {"Location: /a\r\nLocation: /b\r\n", false, "/a"},
      {"Location: /a\r\nLocation: /b\r\nLocation: /a\r\n", false, "/a"},
      {"Location: http:\r\nLocation: //y.org/\r\n", false, "http:"},
      {"Location: /a\r\nLocation:\r\n", false, "/a"},
      {"Location: /a\r\n b\r\n", false, "/a b"},
      {"Location: /a\r\nLocation: /a\r\n b\r\n", false, "/a"},
      {"Location: /a\r\nA: 1\r\n b\r\n", true, "/a"},
      {"Location: /a\r\nLocation: /b\r\n\r\nHTTP/1.1 302 Found\r\nLocation: /c\r\n", true, "/c"},
  };
  for (const Row& row : rows) {
    const AnswerHead head = headOf(std::string("HTTP/1.1 103 Hints\r\n") + row.fields + "\r\n");
    EXPECT_EQ(head.isLocationClear(), row.isClear) << row.fields;
    const auto found = head.fields().find("Location");
    EXPECT_EQ(found == head.fields().end() ? "" : found->second, row.location) << row.fields;
  }
}

TEST(AnswerHead, RefusesTooManyBytesOfAllHeadsTogether) {
  AnswerHead head;
  const std::string line(1023, 'x');
  EXPECT_TRUE(head.take("HTTP/1.1 100 C\n"));
  std::size_t taken = 15;
  while (taken + 1024 <= AnswerHead::kMostBytes) {
    ASSERT_TRUE(head.take(line + "\n"));
    taken += 1024;
  }
  EXPECT_TRUE(head.take(std::string(AnswerHead::kMostBytes - taken, 'y')));
  EXPECT_FALSE(head.take("z"));
}

TEST(DataAddress, ReadsTypesTextsAndBase64) {
  struct Row {
    const char* address;
    std::optional<std::string> type, bytes;
  };
  const std::string plain = "text/plain;charset=US-ASCII";
  const Row rows[] = {
      {"data:,", plain, ""},
      {"data:,a%20b%", plain, "a b%"},
      {"DATA:text/html,<p>#part", "text/html", "<p>"},
      {"data:;charset=utf-8,x", "text/plain;charset=utf-8", "x"},
      {"data:image/png;base64,aGVsbG8=", "image/png", "hello"},
      {"data:;BASE64,aGVsbG8", plain, "hello"},
      {"data:;base64,aGVsbG8%3D", plain, "hello"},
      {"data:;base64,", plain, ""},
      {"data:x;base64;y,a", "x;base64;y", "a"},
      {"data:;base64,a", std::nullopt, std::nullopt},
      {"data:;base64,%%%", std::nullopt, std::nullopt},
      {"data:text/plain", std::nullopt, std::nullopt},
      {"data:", std::nullopt, std::nullopt},
      {"dat", std::nullopt, std::nullopt},
      {"http:,x", std::nullopt, std::nullopt},
  };
  for (const Row& row : rows) {
    const auto data = dataAddressIn(row.address);
    EXPECT_EQ(data.has_value(), row.type.has_value()) << row.address;
    if (!data || !row.type) continue;
    EXPECT_EQ(data->mediaType, row.type) << row.address;
    EXPECT_EQ(data->bytes, row.bytes) << row.address;
  }
}

TEST(Redirect, KnowsOriginsBySchemeHostAndPort) {
  EXPECT_EQ(originOf("HTTP://X.org/a"), "http://x.org:80");
  EXPECT_EQ(originOf("https://u:p@x.org"), "https://x.org:443");
  EXPECT_EQ(originOf("http://x.org:443/"), "http://x.org:443");
  EXPECT_EQ(originOf("http://[::1]:8080/"), "http://[::1]:8080");
  for (const char* none : {"ftp://x.org/", "file:///x", "", "http://", "x.org"})
    EXPECT_EQ(originOf(none), "") << none;
}

TEST(Redirect, LeavesSecretsWhereAnythingOfTheOriginChanges) {
  const Hop hop{"https://u:p@x.org/a",
                "GET",
                {{"Authorization", "s"},
                 {"Cookie", "s"},
                 {"Host", "s"},
                 {"Proxy-Authorization", "s"},
                 {"X", "kept"}},
                std::nullopt};
  for (const char* place : {"http://x.org/", "https://y.org/", "https://x.org:444/",
                            "https://w.x.org/", "//x.org.evil/", "https://x.org@y.org/"}) {
    const NextHop next = nextHop(hop, 302, place);
    ASSERT_TRUE(next.hop) << place;
    EXPECT_EQ(next.hop->fields, (NSHTTPHeaderFields{{"X", "kept"}})) << place;
    EXPECT_EQ(next.hop->address.find("u:p"), std::string::npos) << place;
  }
  for (const char* place : {"/b", "https://x.org:443/b", "https://X.ORG/b", "b", "//x.org/b#c"}) {
    const NextHop next = nextHop(hop, 302, place);
    ASSERT_TRUE(next.hop) << place;
    EXPECT_EQ(next.hop->fields, hop.fields) << place;
    EXPECT_NE(next.hop->address.find("u:p@"), std::string::npos) << next.hop->address;
    EXPECT_EQ(next.hop->address.find('#'), std::string::npos);
  }
  EXPECT_EQ(nextHop(hop, 302, "https://v:q@x.org/").hop->address, "https://v:q@x.org/");
}

TEST(Redirect, KnowsWhichStatusesRedirect) {
  for (long status = 0; status < 700; ++status)
    EXPECT_EQ(isRedirect(status),
              (status >= 301 && status <= 303) || status == 307 || status == 308)
        << status;
}

TEST(LoadErrors, MapEveryFailureOfATransfer) {
  struct Row {
    CurlFailure failure;
    NSURLError code;
  };
  const Row rows[] = {
      {{CURLE_UNSUPPORTED_PROTOCOL}, NSURLErrorCannotParseResponse},
      {{CURLE_URL_MALFORMAT}, NSURLErrorBadURL},
      {{CURLE_COULDNT_RESOLVE_PROXY}, NSURLErrorCannotFindHost},
      {{CURLE_COULDNT_RESOLVE_HOST}, NSURLErrorCannotFindHost},
      {{CURLE_COULDNT_CONNECT}, NSURLErrorCannotConnectToHost},
      {{CURLE_COULDNT_CONNECT, 0, ECONNREFUSED}, NSURLErrorCannotConnectToHost},
      {{CURLE_COULDNT_CONNECT, 0, ENETUNREACH}, NSURLErrorNotConnectedToInternet},
      {{CURLE_COULDNT_CONNECT, 0, ENETDOWN}, NSURLErrorNotConnectedToInternet},
      {{CURLE_PROXY}, NSURLErrorCannotConnectToHost},
      {{CURLE_WEIRD_SERVER_REPLY}, NSURLErrorBadServerResponse},
      {{CURLE_BAD_FUNCTION_ARGUMENT}, NSURLErrorBadServerResponse},
      {{CURLE_HTTP2}, NSURLErrorNetworkConnectionLost},
      {{CURLE_HTTP2_STREAM}, NSURLErrorNetworkConnectionLost},
      {{CURLE_PARTIAL_FILE}, NSURLErrorNetworkConnectionLost},
      {{CURLE_GOT_NOTHING}, NSURLErrorNetworkConnectionLost},
      {{CURLE_SEND_ERROR}, NSURLErrorNetworkConnectionLost},
      {{CURLE_RECV_ERROR}, NSURLErrorNetworkConnectionLost},
      {{CURLE_OPERATION_TIMEDOUT}, NSURLErrorTimedOut},
      {{CURLE_TOO_MANY_REDIRECTS}, NSURLErrorHTTPTooManyRedirects},
      {{CURLE_BAD_CONTENT_ENCODING}, NSURLErrorCannotDecodeContentData},
      {{CURLE_FILESIZE_EXCEEDED}, NSURLErrorDataLengthExceedsMaximum},
      {{CURLE_SSL_CONNECT_ERROR}, NSURLErrorSecureConnectionFailed},
      {{CURLE_SSL_CIPHER}, NSURLErrorSecureConnectionFailed},
      {{CURLE_SSL_CACERT_BADFILE}, NSURLErrorSecureConnectionFailed},
      {{CURLE_SSL_ENGINE_INITFAILED}, NSURLErrorSecureConnectionFailed},
      {{CURLE_USE_SSL_FAILED}, NSURLErrorSecureConnectionFailed},
      {{CURLE_SSL_SHUTDOWN_FAILED}, NSURLErrorSecureConnectionFailed},
      {{CURLE_SSL_CERTPROBLEM}, NSURLErrorClientCertificateRejected},
      {{CURLE_SSL_CLIENTCERT}, NSURLErrorClientCertificateRequired},
      {{CURLE_PEER_FAILED_VERIFICATION}, NSURLErrorServerCertificateUntrusted},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_CERT_HAS_EXPIRED},
       NSURLErrorServerCertificateHasBadDate},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_CERT_NOT_YET_VALID},
       NSURLErrorServerCertificateNotYetValid},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT},
       NSURLErrorServerCertificateHasUnknownRoot},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY},
       NSURLErrorServerCertificateHasUnknownRoot},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE},
       NSURLErrorServerCertificateHasUnknownRoot},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN},
       NSURLErrorServerCertificateHasUnknownRoot},
      {{CURLE_PEER_FAILED_VERIFICATION, X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT},
       NSURLErrorServerCertificateUntrusted},
      {{CURLE_OUT_OF_MEMORY}, NSURLErrorUnknown},
      {{-5}, NSURLErrorUnknown},
      {{99999}, NSURLErrorUnknown},
  };
  for (const Row& row : rows) EXPECT_EQ(codeOf(row.failure), row.code) << row.failure.code;
}

TEST(LoadErrors, MapWhatTheSystemSaysOfFiles) {
  EXPECT_EQ(codeOfFileError(ENOENT), NSURLErrorFileDoesNotExist);
  EXPECT_EQ(codeOfFileError(ENOTDIR), NSURLErrorFileDoesNotExist);
  EXPECT_EQ(codeOfFileError(ENAMETOOLONG), NSURLErrorFileDoesNotExist);
  EXPECT_EQ(codeOfFileError(EISDIR), NSURLErrorFileIsDirectory);
  EXPECT_EQ(codeOfFileError(EACCES), NSURLErrorNoPermissionsToReadFile);
  EXPECT_EQ(codeOfFileError(EPERM), NSURLErrorNoPermissionsToReadFile);
  EXPECT_EQ(codeOfFileError(EIO), NSURLErrorCannotOpenFile);
}

TEST(LoadErrors, HaveATextAndAReason) {
  const auto error = failure(NSURLErrorTimedOut, "why");
  EXPECT_EQ(error->domain(), NSURLErrorDomain);
  EXPECT_EQ(error->code(), NSURLErrorTimedOut);
  EXPECT_EQ(error->localizedDescription(), "The request timed out.");
  EXPECT_EQ(error->userInfo()->objectForKey(NSLocalizedFailureReasonErrorKey), id("why"));
  EXPECT_EQ(failure(NSURLErrorUnknown)->localizedDescription(), "The load failed.");
  EXPECT_TRUE(failure(NSURLErrorUnknown)
                  ->userInfo()
                  ->objectForKey(NSLocalizedFailureReasonErrorKey)
                  .isNil());
}

TEST(LoadTime, AddsSecondsAndKnowsNever) {
  const LoadTime start{std::chrono::seconds(10)};
  EXPECT_EQ(timeAfter(start, 0.25) - start, std::chrono::milliseconds(250));
  EXPECT_EQ(timeAfter(start, -1), start);
  for (const double never : {1e9, 1e300, std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(timeAfter(start, never), kNeverDue);
}

/// Holds up the thread that loads while it is told that its task has ended.
class HeldUp final : public NSURLSessionTaskDelegate {
 public:
  void URLSessionTaskDidCompleteWithError(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionTask>& /*task*/,
      const std::shared_ptr<const NSError>& /*error*/) override {
    isTold = true;
    EXPECT_TRUE(orlftest::becomes([this] { return mayGoOn.load(); }));
  }

  std::atomic<bool> isTold{false};
  std::atomic<bool> mayGoOn{false};
};

TEST(Loader, LetsGoOfASessionWhoseInvalidationComesTooLateForTheProcess) {
  auto delegate = std::make_shared<HeldUp>();
  auto session = std::make_shared<LoadingSession>(nullptr, delegate, nullptr);
  session->dataTaskWithRequest(NSURLRequest::requestWithURL(NSURL::URLWithString("data:,x")))
      ->resume();
  ASSERT_TRUE(orlftest::becomes([&] { return delegate->isTold.load(); }));
  session->invalidateAndCancel();
  session->loader().leave();
  session->finishTasksAndInvalidate();
  session->loader().give({LoaderOrder::Invalidate, nullptr, session, delegate});
  const std::weak_ptr<LoadingSession> heldSession = session;
  const std::weak_ptr<HeldUp> heldDelegate = delegate;
  session.reset();
  delegate->mayGoOn = true;
  delegate.reset();
  EXPECT_TRUE(orlftest::becomes([&] { return heldSession.expired(); }));
  EXPECT_TRUE(orlftest::becomes([&] { return heldDelegate.expired(); }));
}

}  // namespace
