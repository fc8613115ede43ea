#include <ORLFoundation/platform/net/internal/LoadErrors.h>

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace ORLFoundation::internal::net {
namespace {

/// The first row of a key counts; none stands for `NSURLErrorUnknown`.
struct Row {
  long key;
  NSURLError code;
};

constexpr Row kTransferErrors[] = {
    {CURLE_UNSUPPORTED_PROTOCOL, NSURLErrorCannotParseResponse},  // An answer of HTTP/0.9.
    {CURLE_URL_MALFORMAT, NSURLErrorBadURL},
    {CURLE_COULDNT_RESOLVE_PROXY, NSURLErrorCannotFindHost},
    {CURLE_COULDNT_RESOLVE_HOST, NSURLErrorCannotFindHost},
    {CURLE_COULDNT_CONNECT, NSURLErrorCannotConnectToHost},
    {CURLE_PROXY, NSURLErrorCannotConnectToHost},
    {CURLE_WEIRD_SERVER_REPLY, NSURLErrorBadServerResponse},
    {CURLE_BAD_FUNCTION_ARGUMENT, NSURLErrorBadServerResponse},  // A field that folds nothing.
    {CURLE_HTTP2, NSURLErrorNetworkConnectionLost},
    {CURLE_HTTP2_STREAM, NSURLErrorNetworkConnectionLost},
    {CURLE_PARTIAL_FILE, NSURLErrorNetworkConnectionLost},
    {CURLE_GOT_NOTHING, NSURLErrorNetworkConnectionLost},
    {CURLE_SEND_ERROR, NSURLErrorNetworkConnectionLost},
    {CURLE_RECV_ERROR, NSURLErrorNetworkConnectionLost},
    {CURLE_OPERATION_TIMEDOUT, NSURLErrorTimedOut},
    {CURLE_TOO_MANY_REDIRECTS, NSURLErrorHTTPTooManyRedirects},
    {CURLE_BAD_CONTENT_ENCODING, NSURLErrorCannotDecodeContentData},
    {CURLE_FILESIZE_EXCEEDED, NSURLErrorDataLengthExceedsMaximum},
    {CURLE_SSL_CONNECT_ERROR, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_CIPHER, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_CACERT_BADFILE, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_ENGINE_INITFAILED, NSURLErrorSecureConnectionFailed},
    {CURLE_USE_SSL_FAILED, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_SHUTDOWN_FAILED, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_CERTPROBLEM, NSURLErrorClientCertificateRejected},
    {CURLE_SSL_CLIENTCERT, NSURLErrorClientCertificateRequired},
    {CURLE_PEER_FAILED_VERIFICATION, NSURLErrorServerCertificateUntrusted},
};

constexpr Row kCertificateErrors[] = {
    {X509_V_ERR_CERT_HAS_EXPIRED, NSURLErrorServerCertificateHasBadDate},
    {X509_V_ERR_CERT_NOT_YET_VALID, NSURLErrorServerCertificateNotYetValid},
    {X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT, NSURLErrorServerCertificateHasUnknownRoot},
    {X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY, NSURLErrorServerCertificateHasUnknownRoot},
    {X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE, NSURLErrorServerCertificateHasUnknownRoot},
    {X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN, NSURLErrorServerCertificateHasUnknownRoot},
};

constexpr Row kFileErrors[] = {
    {ENOENT, NSURLErrorFileDoesNotExist},        {ENOTDIR, NSURLErrorFileDoesNotExist},
    {ENAMETOOLONG, NSURLErrorFileDoesNotExist},  {EISDIR, NSURLErrorFileIsDirectory},
    {EACCES, NSURLErrorNoPermissionsToReadFile}, {EPERM, NSURLErrorNoPermissionsToReadFile},
};

template <std::size_t count>
NSURLError codeIn(const Row (&table)[count], long key, NSURLError otherwise) noexcept {
  const auto* const row =
      std::find_if(std::begin(table), std::end(table), [&](const Row& r) { return r.key == key; });
  return row == std::end(table) ? otherwise : row->code;
}

struct Text {
  NSURLError code;
  std::string_view text;
};

constexpr Text kTexts[] = {
    {NSURLErrorCancelled, "The load was cancelled."},
    {NSURLErrorBadURL, "The address is not valid."},
    {NSURLErrorTimedOut, "The request timed out."},
    {NSURLErrorUnsupportedURL, "Addresses of this kind cannot be loaded."},
    {NSURLErrorCannotFindHost, "The server's name is not known."},
    {NSURLErrorCannotConnectToHost, "No connection to the server came about."},
    {NSURLErrorNetworkConnectionLost, "The connection to the server was lost."},
    {NSURLErrorHTTPTooManyRedirects, "The server redirects too often."},
    {NSURLErrorResourceUnavailable, "No kept answer is there, and the server is not to be asked."},
    {NSURLErrorNotConnectedToInternet, "The network cannot be reached."},
    {NSURLErrorRedirectToNonExistentLocation, "The server redirects to what is no address."},
    {NSURLErrorBadServerResponse, "The server's answer is not valid."},
    {NSURLErrorUserAuthenticationRequired, "The server asks who the user is."},
    {NSURLErrorCannotDecodeRawData, "The answer is damaged, or was cut off."},
    {NSURLErrorCannotDecodeContentData, "The answer is encoded in a way that is not known."},
    {NSURLErrorCannotParseResponse, "The answer cannot be read."},
    {NSURLErrorFileDoesNotExist, "The file does not exist."},
    {NSURLErrorFileIsDirectory, "The file is a directory."},
    {NSURLErrorNoPermissionsToReadFile, "The file may not be read."},
    {NSURLErrorDataLengthExceedsMaximum, "The answer is longer than is allowed."},
    {NSURLErrorSecureConnectionFailed, "No secure connection to the server came about."},
    {NSURLErrorServerCertificateHasBadDate, "The server's certificate has expired."},
    {NSURLErrorServerCertificateUntrusted,
     "The server's certificate is not its own, or not trusted."},
    {NSURLErrorServerCertificateHasUnknownRoot, "The server's certificate has an unknown issuer."},
    {NSURLErrorServerCertificateNotYetValid, "The server's certificate is not valid yet."},
    {NSURLErrorClientCertificateRejected, "The client's certificate was refused."},
    {NSURLErrorClientCertificateRequired, "The server asks for a client's certificate."},
    {NSURLErrorCannotCreateFile, "The file for the download cannot be made."},
    {NSURLErrorCannotOpenFile, "The file cannot be read."},
    {NSURLErrorCannotWriteToFile, "The file of the download cannot be written."},
};

std::string_view textOf(NSURLError code) noexcept {
  const auto* const row = std::find_if(std::begin(kTexts), std::end(kTexts),
                                       [&](const Text& text) { return text.code == code; });
  return row == std::end(kTexts) ? "The load failed." : row->text;
}

}  // namespace

std::shared_ptr<const NSError> failure(NSURLError code, std::string_view reason) {
  const auto info = std::make_shared<NSMutableDictionary>();
  info->setObject(textOf(code), NSLocalizedDescriptionKey);
  if (!reason.empty()) info->setObject(reason, NSLocalizedFailureReasonErrorKey);
  return NSError::errorWithDomain(NSURLErrorDomain, code, info);
}

NSURLError codeOf(const CurlFailure& failure) noexcept {
  const NSURLError code = codeIn(kTransferErrors, failure.code, NSURLErrorUnknown);
  if (code == NSURLErrorServerCertificateUntrusted)
    return codeIn(kCertificateErrors, failure.verified, code);
  const bool isCutOff = failure.systemError == ENETUNREACH || failure.systemError == ENETDOWN;
  if (code == NSURLErrorCannotConnectToHost && isCutOff) return NSURLErrorNotConnectedToInternet;
  return code;
}

NSURLError codeOfFileError(int systemError) noexcept {
  return codeIn(kFileErrors, systemError, NSURLErrorCannotOpenFile);
}

}  // namespace ORLFoundation::internal::net
