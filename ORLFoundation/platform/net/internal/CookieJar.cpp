#include <ORLFoundation/platform/net/internal/CookieJar.h>

#include <ORLFoundation/platform/net/internal/LoaderThreads.h>

#include <array>
#include <memory>
#include <mutex>

namespace ORLFoundation::internal::net {
namespace {

using Locks = std::array<std::mutex, CURL_LOCK_DATA_LAST>;

void lock(CURL* /*handle*/, curl_lock_data data, curl_lock_access /*access*/, void* locks) {
  (*static_cast<Locks*>(locks))[data].lock();
}

void unlock(CURL* /*handle*/, curl_lock_data data, void* locks) {
  (*static_cast<Locks*>(locks))[data].unlock();
}

CURLSH* makeJar() {
  startCurl();
  CURLSH* const jar = curl_share_init();
  curl_share_setopt(jar, CURLSHOPT_USERDATA, new Locks);
  curl_share_setopt(jar, CURLSHOPT_LOCKFUNC, lock);
  curl_share_setopt(jar, CURLSHOPT_UNLOCKFUNC, unlock);
  curl_share_setopt(jar, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  curl_share_setopt(jar, CURLSHOPT_SHARE, CURL_LOCK_DATA_PSL);
  return jar;
}

}  // namespace

// Never destroyed: sessions may outlive everything else of the process.
CURLSH* cookieJar() {
  static CURLSH* const jar = makeJar();
  return jar;
}

void emptyCookieJar() {
  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(),
                                                                   curl_easy_cleanup);
  curl_easy_setopt(handle.get(), CURLOPT_SHARE, cookieJar());
  curl_easy_setopt(handle.get(), CURLOPT_COOKIELIST, "ALL");
}

}  // namespace ORLFoundation::internal::net
