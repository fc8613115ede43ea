// Requests one after the other, eight at a time, and long bodies, beside libcurl's multi interface
// used as it is. The server is a thread a connection, in the same process.
#include <ORLFoundation/platform/net/NSURLSession.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::size_t kSmall = 1000;
constexpr std::int64_t kRequests = 2000;

bool sendAll(int socket, const std::string& text) {
  std::size_t sent = 0;
  while (sent < text.size()) {
    const ssize_t count = ::send(socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return false;
    sent += static_cast<std::size_t>(count);
  }
  return true;
}

/// Answers with as many bytes as the path's number says.
void serve(int socket) {
  std::string read, answer;
  char piece[4096];
  ssize_t count = 0;
  while ((count = ::recv(socket, piece, sizeof piece, 0)) > 0) {
    read.append(piece, static_cast<std::size_t>(count));
    if (read.find("\r\n\r\n") == std::string::npos) continue;
    const std::size_t size = std::strtoull(read.c_str() + 5, nullptr, 10);
    answer = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n";
    answer.append(size, 'x');
    if (!sendAll(socket, answer)) break;
    read.clear();
  }
  ::close(socket);
}

std::string startServer() {
  const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  if (::bind(listener, plain, length) != 0 || ::listen(listener, 64) != 0 ||
      ::getsockname(listener, plain, &length) != 0)
    std::abort();
  std::thread([listener] {
    for (int socket = 0; (socket = ::accept(listener, nullptr, nullptr)) >= 0;)
      std::thread(serve, socket).detach();
  }).detach();
  return "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
}

std::string addressOf(std::size_t size) {
  static const std::string server = startServer();
  return server + std::to_string(size);
}

/// Begins the next request as each ends.
class Chain : public NSURLSessionDataDelegate {
 public:
  Chain(std::size_t size, std::int64_t requests)
      : request_(NSURLRequest::requestWithURL(NSURL::URLWithString(addressOf(size)))),
        left_(requests) {}

  void URLSessionDataTaskDidReceiveData(const std::shared_ptr<NSURLSession>& /*session*/,
                                        const std::shared_ptr<NSURLSessionDataTask>& /*dataTask*/,
                                        const NSData& data) override {
    body_.appendData(data);
  }
  void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>& session,
                                          const std::shared_ptr<NSURLSessionTask>& /*task*/,
                                          const std::shared_ptr<const NSError>& error) override {
    const std::lock_guard guard(lock_);
    if (error) failed_ = true;
    if (started_ < left_) {
      begin(*session);
    } else if (++ended_ == streams_) {
      done_.notify_all();
    }
  }
  std::size_t run(NSURLSession& session, std::int64_t streams) {
    std::unique_lock guard(lock_);
    streams_ = streams;
    for (std::int64_t i = 0; i < streams; ++i) begin(session);
    done_.wait(guard, [&] { return ended_ == streams_; });
    return failed_ ? 0 : body_.length();
  }

 private:
  void begin(NSURLSession& session) {
    ++started_;
    session.dataTaskWithRequest(request_)->resume();
  }

  const std::shared_ptr<NSURLRequest> request_;
  const std::int64_t left_;
  std::int64_t started_ = 0, ended_ = 0, streams_ = 0;
  bool failed_ = false;
  NSMutableData body_;
  std::mutex lock_;
  std::condition_variable done_;
};

void ours(benchmark::State& state, std::size_t size, std::int64_t requests, std::int64_t streams) {
  for (auto _ : state) {
    const auto chain = std::make_shared<Chain>(size, requests);
    const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
    configuration->setHTTPMaximumConnectionsPerHost(streams);
    const auto session = NSURLSession::sessionWithConfiguration(configuration, chain, nullptr);
    if (chain->run(*session, streams) != size * static_cast<std::size_t>(requests))
      state.SkipWithError("bytes are missing");
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * requests);
}

std::size_t append(char* bytes, std::size_t size, std::size_t count, void* body) {
  static_cast<NSMutableData*>(body)->appendBytes(
      {reinterpret_cast<const std::uint8_t*>(bytes), size * count});
  return size * count;
}

void multi(benchmark::State& state, std::size_t size, std::int64_t requests, std::int64_t streams) {
  const std::string address = addressOf(size);
  for (auto _ : state) {
    CURLM* const all = curl_multi_init();
    std::vector<NSMutableData> bodies(static_cast<std::size_t>(streams));
    std::int64_t left = requests;
    std::size_t received = 0;
    for (NSMutableData& body : bodies) {
      CURL* const handle = curl_easy_init();
      curl_easy_setopt(handle, CURLOPT_URL, address.c_str());
      curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
      curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
      curl_easy_setopt(handle, CURLOPT_PRIVATE, &body);
      curl_multi_add_handle(all, handle);
      --left;
    }
    for (std::int64_t running = streams; running > 0;) {
      int count = 0;
      curl_multi_perform(all, &count);
      while (const CURLMsg* const message = curl_multi_info_read(all, &count)) {
        CURL* const handle = message->easy_handle;
        char* body = nullptr;
        curl_easy_getinfo(handle, CURLINFO_PRIVATE, &body);
        received += reinterpret_cast<NSMutableData*>(body)->length();
        reinterpret_cast<NSMutableData*>(body)->setLength(0);
        curl_multi_remove_handle(all, handle);
        if (left-- > 0) {
          curl_multi_add_handle(all, handle);
        } else {
          curl_easy_cleanup(handle);
          --running;
        }
      }
      if (running > 0) curl_multi_poll(all, nullptr, 0, 1000, nullptr);
    }
    curl_multi_cleanup(all);
    if (received != size * static_cast<std::size_t>(requests))
      state.SkipWithError("bytes are missing");
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * requests);
}

BENCHMARK_CAPTURE(ours, chained, kSmall, kRequests, 1)->Name("load1KBChained/ours")->UseRealTime();
BENCHMARK_CAPTURE(multi, chained, kSmall, kRequests, 1)
    ->Name("load1KBChained/libcurl")
    ->UseRealTime();
BENCHMARK_CAPTURE(ours, eight, kSmall, kRequests, 8)
    ->Name("load1KBEightAtOnce/ours")
    ->UseRealTime();
BENCHMARK_CAPTURE(multi, eight, kSmall, kRequests, 8)
    ->Name("load1KBEightAtOnce/libcurl")
    ->UseRealTime();
BENCHMARK_CAPTURE(ours, long, 200'000'000, 1, 1)->Name("load200MB/ours")->UseRealTime();
BENCHMARK_CAPTURE(multi, long, 200'000'000, 1, 1)->Name("load200MB/libcurl")->UseRealTime();

}  // namespace
}  // namespace ORLFoundation
