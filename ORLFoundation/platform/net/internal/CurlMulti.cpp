#include <ORLFoundation/platform/net/internal/CurlMulti.h>

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace ORLFoundation::internal::net {
namespace {

constexpr long kFewestKept = 64;

// Whoever waits for a connection that broke is to find out by using it.
int readinessOf(const pollfd& socket) noexcept {
  constexpr int kBroken = POLLERR | POLLHUP | POLLNVAL;
  const int ready = (socket.revents & kBroken) != 0 ? socket.events : socket.revents;
  return ((ready & POLLIN) != 0 ? CURL_CSELECT_IN : 0) |
         ((ready & POLLOUT) != 0 ? CURL_CSELECT_OUT : 0);
}

}  // namespace

CurlMulti::CurlMulti(long connections)
    : multi_(curl_multi_init()), watched_{{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), POLLIN, 0}} {
  curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, connections);
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, std::max(kFewestKept, 2 * connections));
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &CurlMulti::onSocket);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
}

CurlMulti::~CurlMulti() {
  curl_multi_cleanup(multi_);
  if (canBeWoken()) ::close(wakening().fd);
}

void CurlMulti::wake() const noexcept {
  const std::uint64_t once = 1;
  static_cast<void>(::write(wakening().fd, &once, sizeof once));
}

int CurlMulti::onSocket(CURL* /*handle*/, curl_socket_t socket, int what, void* self,
                        void* /*own*/) {
  static_cast<CurlMulti*>(self)->watch(socket, what);
  return 0;
}

void CurlMulti::watch(curl_socket_t socket, int what) {
  if (what == CURL_POLL_REMOVE) return forget(socket);
  const auto events =
      ((what & CURL_POLL_IN) != 0 ? POLLIN : 0) | ((what & CURL_POLL_OUT) != 0 ? POLLOUT : 0);
  const pollfd wanted{socket, static_cast<short>(events), 0};
  const auto found = std::find_if(watched_.begin() + 1, watched_.end(),
                                  [&](const pollfd& one) { return one.fd == socket; });
  if (found != watched_.end())
    *found = wanted;
  else
    watched_.push_back(wanted);
}

// Another connection may get the number of one that was closed, and hear of none of its news.
void CurlMulti::forget(curl_socket_t socket) noexcept {
  const auto isIt = [&](const pollfd& one) { return one.fd == socket; };
  const auto found = std::find_if(watched_.begin() + 1, watched_.end(), isIt);
  if (found == watched_.end()) return;
  *found = watched_.back();
  watched_.pop_back();
  const auto ready = std::find_if(ready_.begin(), ready_.end(), isIt);
  if (ready != ready_.end()) ready->fd = CURL_SOCKET_BAD;
}

void CurlMulti::runDue() noexcept {
  int running = 0;
  if (multi_ != nullptr) curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
}

void CurlMulti::wait(std::chrono::milliseconds longest) {
  // Asked each time: libcurl rounds down, and tells of each time once.
  long due = -1;
  curl_multi_timeout(multi_, &due);
  const auto most = static_cast<long>(longest.count());
  const int span = static_cast<int>(due < 0 ? most : std::min(due, most));
  if (::poll(watched_.data(), watched_.size(), span) <= 0) return;
  takeReady();
  for (const pollfd& socket : ready_) {
    int running = 0;
    if (socket.fd != CURL_SOCKET_BAD)
      curl_multi_socket_action(multi_, socket.fd, readinessOf(socket), &running);
  }
  ready_.clear();
}

void CurlMulti::takeReady() {
  std::uint64_t wakes = 0;
  if (wakening().revents != 0) static_cast<void>(::read(wakening().fd, &wakes, sizeof wakes));
  std::copy_if(watched_.begin() + 1, watched_.end(), std::back_inserter(ready_),
               [](const pollfd& socket) { return socket.revents != 0; });
}

std::optional<CurlMulti::Ended> CurlMulti::nextEnded() noexcept {
  int left = 0;
  while (const CURLMsg* const message = curl_multi_info_read(multi_, &left))
    if (message->msg == CURLMSG_DONE) return Ended{message->easy_handle, message->data.result};
  return std::nullopt;
}

}  // namespace ORLFoundation::internal::net
