/// A libcurl multi handle and the sockets of its transfers. Only those transfers run whose socket
/// is ready or whose time has come. libcurl's own loop, `curl_multi_perform` and `curl_multi_poll`,
/// asks each transfer about its socket each time. Under it requests over HTTP/2 stood still until
/// the wait was over, in ten of about 1,700 bursts of 50 to 100 (libcurl 7.88.1, nginx), and in
/// none as it is done here. The likely cause: what one transfer has read may belong to another one
/// of its connection, of which no socket tells then.
#pragma once

#include <curl/curl.h>
#include <poll.h>

#include <chrono>
#include <optional>
#include <vector>

namespace ORLFoundation::internal::net {

/// For one thread, but for `wake`.
class CurlMulti {
 public:
  /// For so many connections to each server.
  explicit CurlMulti(long connections);
  ~CurlMulti();
  CurlMulti(const CurlMulti&) = delete;
  CurlMulti& operator=(const CurlMulti&) = delete;

  /// null where there was no memory for it: then there are no transfers.
  [[nodiscard]] CURLM* get() const noexcept { return multi_; }
  /// Whether `wake` is of use: not where the process had no descriptor left.
  [[nodiscard]] bool canBeWoken() const noexcept { return wakening().fd >= 0; }
  /// Ends the wait, or the next one where nobody waits. Any thread.
  void wake() const noexcept;

  /// Runs the transfers whose time has come, new ones among them.
  void runDue() noexcept;
  /// Waits for a socket, a transfer's time or `wake`, but no longer than this, and runs the
  /// transfers of the sockets that are ready.
  void wait(std::chrono::milliseconds longest);
  /// A transfer that has ended, and how; nil for no more of them.
  struct Ended {
    CURL* handle;
    CURLcode result;
  };
  [[nodiscard]] std::optional<Ended> nextEnded() noexcept;

 private:
  static int onSocket(CURL*, curl_socket_t socket, int what, void* self, void*);
  void watch(curl_socket_t socket, int what);
  void forget(curl_socket_t socket) noexcept;
  [[nodiscard]] const pollfd& wakening() const noexcept { return watched_.front(); }
  void takeReady();

  CURLM* const multi_;
  std::vector<pollfd> watched_;  ///< What `wake` writes to, then sockets.
  std::vector<pollfd> ready_;    ///< Sockets whose transfers are yet to run.
};

}  // namespace ORLFoundation::internal::net
