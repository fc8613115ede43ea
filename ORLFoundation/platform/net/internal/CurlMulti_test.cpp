#include <ORLFoundation/platform/net/internal/CurlMulti.h>
#include <ORLFoundation/platform/net/internal/LoaderThreads.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ORLFoundation::internal::net;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLong{30'000};
constexpr milliseconds kShort{20};

/// Takes connections and answers when the test says so, all on its thread.
class Listener {
 public:
  Listener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(::bind(socket_, plain, size), 0);
    EXPECT_EQ(::listen(socket_, 64), 0);
    EXPECT_EQ(::getsockname(socket_, plain, &size), 0);
    url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
  }
  ~Listener() { ::close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  [[nodiscard]] const std::string& url() const { return url_; }
  [[nodiscard]] int accept() const { return ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC); }

 private:
  const int socket_;
  std::string url_;
};

void answer(int connection, const std::string& fields = "", const std::string& body = "ok") {
  char request[4096];
  EXPECT_GT(::recv(connection, request, sizeof request, 0), 0);
  const std::string text = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                           "\r\n" + fields + "\r\n" + body;
  EXPECT_EQ(::send(connection, text.data(), text.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(text.size()));
}

/// A request that counts how often libcurl runs it.
class Request {
 public:
  Request(const CurlMulti& multi, const std::string& url)
      : multi_(multi.get()), handle_(curl_easy_init()) {
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_NOPROXY, "*");
    set(CURLOPT_WRITEFUNCTION, &Request::onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_XFERINFOFUNCTION, &Request::onProgress);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
  }
  ~Request() {
    if (isAdded_) curl_multi_remove_handle(multi_, handle_);
    curl_easy_cleanup(handle_);
  }
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  template <class Value>
  void set(CURLoption option, Value value) {
    curl_easy_setopt(handle_, option, value);
  }
  void begin() {
    isAdded_ = true;
    EXPECT_EQ(curl_multi_add_handle(multi_, handle_), CURLM_OK);
  }
  [[nodiscard]] CURL* handle() const { return handle_; }

  std::size_t received = 0;
  int runs = 0;
  bool pauses = false;
  int pausings = 0;

 private:
  static std::size_t onBody(char* /*bytes*/, std::size_t size, std::size_t count, void* self) {
    auto& request = *static_cast<Request*>(self);
    if (request.pauses) {
      ++request.pausings;
      return CURL_WRITEFUNC_PAUSE;
    }
    request.received += size * count;
    return size * count;
  }
  static int onProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    ++static_cast<Request*>(self)->runs;
    return 0;
  }

  CURLM* const multi_;
  CURL* const handle_;
  bool isAdded_ = false;
};

class CurlMultis : public testing::Test {
 protected:
  CurlMultis() { startCurl(); }
  ~CurlMultis() override {
    requests_.clear();
    for (const int connection : connections_) ::close(connection);
  }

  Request& make() {
    return *requests_.emplace_back(std::make_unique<Request>(*multi_, listener_.url()));
  }
  /// Runs what is due and what comes until the condition holds; false after half a minute.
  template <class Condition>
  bool runUntil(const Condition& condition) {
    const auto end = steady_clock::now() + kLong;
    while (!condition()) {
      if (steady_clock::now() > end) return false;
      multi_->runDue();
      multi_->wait(kShort);
    }
    return true;
  }
  /// Begins a request and gives its connection, on which it has been sent.
  int connect(Request& request) {
    request.begin();
    int connection = -1;
    std::thread accepting([&] { connection = listener_.accept(); });
    const auto isSent = [&] {
      long size = 0;
      curl_easy_getinfo(request.handle(), CURLINFO_REQUEST_SIZE, &size);
      return size > 0;
    };
    EXPECT_TRUE(runUntil(isSent));
    accepting.join();
    connections_.push_back(connection);
    return connection;
  }
  std::optional<CURLcode> resultOf(const Request& request) {
    std::optional<CURLcode> result;
    EXPECT_TRUE(runUntil([&] {
      const auto ended = multi_->nextEnded();
      if (ended && ended->handle == request.handle()) result = ended->result;
      return result.has_value();
    }));
    return result;
  }
  /// Whether each of some waits lasts as long as it may.
  bool sleeps() {
    for (int i = 0; i < 3; ++i) {
      const auto start = steady_clock::now();
      multi_->wait(kShort);
      if (steady_clock::now() - start < kShort) return false;
    }
    return true;
  }

  Listener listener_;
  std::unique_ptr<CurlMulti> multi_ = std::make_unique<CurlMulti>(100);
  std::vector<std::unique_ptr<Request>> requests_;
  std::vector<int> connections_;
};

TEST_F(CurlMultis, RunTransfersWhoseSocketIsReadyAndNoOthers) {
  Request &first = make(), &second = make();
  const int toFirst = connect(first);
  connect(second);
  ASSERT_TRUE(runUntil([&] { return sleeps(); }));
  const int runs = second.runs;
  answer(toFirst);
  const auto start = steady_clock::now();
  while (first.received == 0 && steady_clock::now() - start < kLong) multi_->wait(kLong);
  EXPECT_EQ(first.received, 2U);
  EXPECT_LT(steady_clock::now() - start, kLong);
  EXPECT_EQ(second.runs, runs);
  const auto ended = multi_->nextEnded();
  ASSERT_TRUE(ended);
  EXPECT_EQ(ended->handle, first.handle());
  EXPECT_EQ(ended->result, CURLE_OK);
  EXPECT_FALSE(multi_->nextEnded());
  answer(connections_.back());
  EXPECT_EQ(resultOf(second), CURLE_OK);
}

TEST_F(CurlMultis, RunTransfersWhoseTimeHasCome) {
  Request& request = make();
  request.set(CURLOPT_TIMEOUT_MS, 60L);
  const auto start = steady_clock::now();
  connect(request);
  bool isEnded = false;
  while (!isEnded && steady_clock::now() - start < kLong) {
    multi_->wait(kLong);
    multi_->runDue();
    if (const auto ended = multi_->nextEnded()) {
      isEnded = true;
      EXPECT_EQ(ended->result, CURLE_OPERATION_TIMEDOUT);
    }
  }
  EXPECT_TRUE(isEnded);
  EXPECT_GE(steady_clock::now() - start, milliseconds(60));
  EXPECT_LT(steady_clock::now() - start, kLong);
}

TEST_F(CurlMultis, TellOfEndsInTheirOrder) {
  Request* const all[] = {&make(), &make(), &make()};
  for (Request* const request : all) connect(*request);
  for (const std::size_t index : {1U, 2U, 0U}) {
    answer(connections_[index]);
    ASSERT_TRUE(runUntil([&] { return all[index]->received == 2; }));
  }
  for (const std::size_t index : {1U, 2U, 0U}) {
    const auto ended = multi_->nextEnded();
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->handle, all[index]->handle()) << index;
    EXPECT_EQ(ended->result, CURLE_OK);
  }
  EXPECT_FALSE(multi_->nextEnded());
}

TEST_F(CurlMultis, HearOfManySockets) {
  constexpr std::size_t kCount = 40;
  for (std::size_t i = 0; i < kCount; ++i) connect(make());
  for (const int connection : connections_) answer(connection);
  std::size_t ends = 0;
  EXPECT_TRUE(runUntil([&] {
    while (const auto ended = multi_->nextEnded()) ends += ended->result == CURLE_OK ? 1 : 100;
    return ends >= kCount;
  }));
  EXPECT_EQ(ends, kCount);
}

TEST_F(CurlMultis, HearOfASocketThatGotTheNumberOfAClosedOne) {
  for (int i = 0; i < 5; ++i) {
    Request& request = make();
    answer(connect(request), "Connection: close\r\n");
    EXPECT_EQ(resultOf(request), CURLE_OK);
    EXPECT_EQ(request.received, 2U);
    requests_.clear();
  }
  EXPECT_TRUE(sleeps());  // Of closed sockets nothing is asked.
}

TEST_F(CurlMultis, TellOfAServerThatBreaksOff) {
  Request& request = make();
  const int connection = connect(request);
  const linger now{1, 0};
  ::setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  ::close(connection);
  connections_.clear();
  EXPECT_EQ(resultOf(request), CURLE_RECV_ERROR);
}

TEST_F(CurlMultis, SleepWhileNothingComes) {
  EXPECT_TRUE(sleeps());  // Without transfers.
  Request &silent = make(), &held = make(), &done = make();
  connect(silent);
  held.pauses = true;
  answer(connect(held));
  answer(connect(done));
  EXPECT_EQ(resultOf(done), CURLE_OK);
  // libcurl's own times pass first.
  EXPECT_TRUE(runUntil([&] { return sleeps(); }));
  EXPECT_EQ(held.received, 0U);
  // A connection that is kept for others may end unheard.
  ::close(connections_.back());
  connections_.pop_back();
  EXPECT_TRUE(sleeps());
}

TEST_F(CurlMultis, SleepWhileAnAnswerIsHeldWhoseRequestIsNotYetSent) {
  const std::string body(std::size_t{16} << 20, 'b');
  curl_slist* const fields = curl_slist_append(nullptr, "Expect:");
  Request& request = make();
  request.pauses = true;
  request.set(CURLOPT_HTTPHEADER, fields);
  request.set(CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
  request.set(CURLOPT_POSTFIELDS, body.data());
  const int connection = connect(request);
  answer(connection, "", std::string(100'000, 'x'));
  EXPECT_TRUE(runUntil([&] { return request.pausings > 0 && sleeps(); }));
  requests_.clear();
  curl_slist_free_all(fields);
}

TEST_F(CurlMultis, CloseTheirConnectionsAsTheyEnd) {
  Request& request = make();
  const int connection = connect(request);
  answer(connection);
  EXPECT_EQ(resultOf(request), CURLE_OK);
  requests_.clear();
  char byte = 0;
  EXPECT_EQ(::recv(connection, &byte, 1, MSG_DONTWAIT), -1);
  multi_.reset();
  EXPECT_EQ(::recv(connection, &byte, 1, 0), 0);
}

TEST_F(CurlMultis, AreWokenByAnotherThread) {
  ASSERT_TRUE(multi_->canBeWoken());
  const auto start = steady_clock::now();
  std::thread waking([&] { multi_->wake(); });
  multi_->wait(kLong);
  waking.join();
  EXPECT_LT(steady_clock::now() - start, kLong);
  EXPECT_TRUE(sleeps());  // Once, not for good.
  // Also before they sleep, however often.
  for (int i = 0; i < 3; ++i) multi_->wake();
  multi_->wait(kLong);
  EXPECT_LT(steady_clock::now() - start, kLong);
  EXPECT_TRUE(sleeps());
}

TEST_F(CurlMultis, KnowWhetherTheyCanBeWoken) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{0, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  {
    const CurlMulti poor{1};
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_FALSE(poor.canBeWoken());
    poor.wake();
  }
  EXPECT_TRUE(CurlMulti{1}.canBeWoken());
}

}  // namespace
