// Requests one after the other, eight at a time, and long bodies to memory and to files, beside
// libcurl's multi interface used as it is, with its handles used again and with a fresh one for
// each request. The server is a thread a connection, in the same process. Where threads may run
// decides much: run it also with `taskset -c 0`, on one processor.
#include <ORLFoundation/platform/net/NSURLSession.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
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
class Chain : public NSURLSessionDataDelegate, public NSURLSessionDownloadDelegate {
 public:
  Chain(std::size_t size, std::int64_t requests, bool downloads)
      : request_(NSURLRequest::requestWithURL(NSURL::URLWithString(addressOf(size)))),
        left_(requests),
        downloads_(downloads) {}

  void URLSessionDownloadTaskDidFinishDownloadingToURL(
      const std::shared_ptr<NSURLSession>& /*session*/,
      const std::shared_ptr<NSURLSessionDownloadTask>& /*downloadTask*/,
      const NSURL& location) override {
    written_ += std::filesystem::file_size(location.path());
  }

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
    return failed_ ? 0 : body_.length() + written_;
  }

 private:
  void begin(NSURLSession& session) {
    ++started_;
    if (downloads_) return session.downloadTaskWithRequest(request_)->resume();
    session.dataTaskWithRequest(request_)->resume();
  }

  const std::shared_ptr<NSURLRequest> request_;
  const std::int64_t left_;
  const bool downloads_;
  std::size_t written_ = 0;
  std::int64_t started_ = 0, ended_ = 0, streams_ = 0;
  bool failed_ = false;
  NSMutableData body_;
  std::mutex lock_;
  std::condition_variable done_;
};

void ours(benchmark::State& state, std::size_t size, std::int64_t requests, std::int64_t streams,
          bool downloads) {
  for (auto _ : state) {
    const auto chain = std::make_shared<Chain>(size, requests, downloads);
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

/// A body to a file of libcurl's own way of writing, which is removed again.
void file(benchmark::State& state, std::size_t size) {
  const std::string address = addressOf(size);
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "download";
  for (auto _ : state) {
    CURLM* const all = curl_multi_init();
    CURL* const handle = curl_easy_init();
    std::FILE* const stream = std::fopen(path.c_str(), "wb");
    curl_easy_setopt(handle, CURLOPT_URL, address.c_str());
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, stream);
    curl_multi_add_handle(all, handle);
    int running = 1;
    while (curl_multi_perform(all, &running) == CURLM_OK && running > 0)
      curl_multi_poll(all, nullptr, 0, 1000, nullptr);
    curl_multi_cleanup(all);
    curl_easy_cleanup(handle);
    std::fclose(stream);
    if (std::filesystem::file_size(path) != size) state.SkipWithError("bytes are missing");
    std::filesystem::remove(path);
  }
}

CURL* handleFor(const std::string& address, NSMutableData& body) {
  CURL* const handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_URL, address.c_str());
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
  curl_easy_setopt(handle, CURLOPT_PRIVATE, &body);
  return handle;
}

/// With a handle that is used again, or one for each request, as libcurl 7.88.1 needs it whose
/// used handles read memory that is gone where an answer's first field is folded.
enum class Handles : std::uint8_t { UsedAgain, Fresh };

void multi(benchmark::State& state, std::size_t size, std::int64_t requests, std::int64_t streams,
           Handles handles) {
  const std::string address = addressOf(size);
  for (auto _ : state) {
    CURLM* const all = curl_multi_init();
    std::vector<NSMutableData> bodies(static_cast<std::size_t>(streams));
    std::int64_t left = requests;
    std::size_t received = 0;
    for (NSMutableData& body : bodies) {
      curl_multi_add_handle(all, handleFor(address, body));
      --left;
    }
    for (std::int64_t running = streams; running > 0;) {
      int count = 0;
      curl_multi_perform(all, &count);
      while (const CURLMsg* const message = curl_multi_info_read(all, &count)) {
        CURL* handle = message->easy_handle;
        char* data = nullptr;
        curl_easy_getinfo(handle, CURLINFO_PRIVATE, &data);
        auto& body = *reinterpret_cast<NSMutableData*>(data);
        received += body.length();
        body.setLength(0);
        curl_multi_remove_handle(all, handle);
        const bool isLast = left-- <= 0;
        if (isLast || handles == Handles::Fresh) curl_easy_cleanup(handle);
        if (isLast) {
          --running;
          continue;
        }
        if (handles == Handles::Fresh) handle = handleFor(address, body);
        curl_multi_add_handle(all, handle);
      }
      if (running > 0) curl_multi_poll(all, nullptr, 0, 1000, nullptr);
    }
    curl_multi_cleanup(all);
    if (received != size * static_cast<std::size_t>(requests))
      state.SkipWithError("bytes are missing");
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * requests);
}

constexpr std::size_t kLong = 200'000'000;

BENCHMARK_CAPTURE(ours, chained, kSmall, kRequests, 1, false)
    ->Name("load1KBChained/ours")
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(multi, chained, kSmall, kRequests, 1, Handles::UsedAgain)
    ->Name("load1KBChained/libcurl")
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(multi, chainedFresh, kSmall, kRequests, 1, Handles::Fresh)
    ->Name("load1KBChained/libcurlFreshHandles")
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(ours, eight, kSmall, kRequests, 8, false)
    ->Name("load1KBEightAtOnce/ours")
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(multi, eight, kSmall, kRequests, 8, Handles::UsedAgain)
    ->Name("load1KBEightAtOnce/libcurl")
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(multi, eightFresh, kSmall, kRequests, 8, Handles::Fresh)
    ->Name("load1KBEightAtOnce/libcurlFreshHandles")
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(ours, long, kLong, 1, 1, false)->Name("load200MB/ours")->UseRealTime();
BENCHMARK_CAPTURE(multi, long, kLong, 1, 1, Handles::UsedAgain)
    ->Name("load200MB/libcurl")
    ->UseRealTime();
BENCHMARK_CAPTURE(ours, file, kLong, 1, 1, true)->Name("download200MB/ours")->UseRealTime();
BENCHMARK_CAPTURE(file, file, kLong)->Name("download200MB/libcurl")->UseRealTime();

}  // namespace
}  // namespace ORLFoundation
