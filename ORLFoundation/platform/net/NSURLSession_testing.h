/// Servers on the loopback and delegates that keep what they are told, for tests of sessions.
#pragma once

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/NSURLSession.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>
#include <tests/support/Waiting.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orlftest {

/// A program that runs beside the test, with a pipe to its input and one from its output; it is
/// killed with the object.
class BesideProcess {
 public:
  explicit BesideProcess(std::vector<std::string> command) {
    std::array<int, 2> in{}, out{};
    if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0)
      throw std::runtime_error("no pipe");
    std::vector<char*> arguments;
    for (std::string& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    child_ = ::fork();
    if (child_ == 0) {
      ::dup2(in[0], STDIN_FILENO);
      ::dup2(out[1], STDOUT_FILENO);
      ::execvp(arguments[0], arguments.data());
      ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    in_ = in[1];
    out_ = out[0];
  }
  ~BesideProcess() {
    ::close(in_);
    ::close(out_);
    ::kill(child_, SIGTERM);
    ::waitpid(child_, nullptr, 0);
  }
  BesideProcess(const BesideProcess&) = delete;
  BesideProcess& operator=(const BesideProcess&) = delete;

  /// Gives it a line of input; false where it takes none.
  bool say(const std::string& text) const {
    const std::string whole = text + "\n";
    for (std::size_t at = 0; at < whole.size();) {
      const ssize_t count = ::write(in_, whole.data() + at, whole.size() - at);
      if (count < 0) return false;
      at += static_cast<std::size_t>(count);
    }
    return true;
  }
  /// The next line of its output; "" at the end.
  std::string line() const {
    std::string text;
    for (char c = 0; ::read(out_, &c, 1) == 1 && c != '\n';) text.push_back(c);
    return text;
  }

 private:
  pid_t child_ = 0;
  int in_ = -1, out_ = -1;
};

/// tests/data/net/server.py on a port of its own.
class LocalServer {
 public:
  LocalServer()
      : process_({"python3", (testDataFolder() / "net" / "server.py").string()}),
        port_(process_.line()) {
    if (port_.empty()) throw std::runtime_error("the server did not begin");
  }
  /// One for all tests of the program.
  static const LocalServer& shared() {
    static const LocalServer server;
    return server;
  }

  [[nodiscard]] const std::string& port() const { return port_; }
  [[nodiscard]] std::string text(const std::string& path,
                                 const std::string& host = "127.0.0.1") const {
    return "http://" + host + ":" + port_ + path;
  }
  [[nodiscard]] ORLFoundation::NSURL url(const std::string& path,
                                         const std::string& host = "127.0.0.1") const {
    return ORLFoundation::NSURL::URLWithString(text(path, host)).value();
  }

 private:
  const BesideProcess process_;
  const std::string port_;
};

/// A request for a path of the one server.
inline std::shared_ptr<ORLFoundation::NSURLRequest> plainRequest(const std::string& path) {
  return ORLFoundation::NSURLRequest::requestWithURL(LocalServer::shared().url(path));
}

inline std::shared_ptr<ORLFoundation::NSURLRequest> patientRequest(const std::string& path,
                                                                   double timeout = 60) {
  return ORLFoundation::NSURLRequest::requestWithURL(
      LocalServer::shared().url(path), ORLFoundation::NSURLRequestUseProtocolCachePolicy, timeout);
}

/// What one task came to.
struct TaskRecord {
  std::vector<std::string> events;  ///< "sent", "data", "written", "download", "complete".
  std::string body;                 ///< Of data events, or of the downloaded file.
  std::shared_ptr<ORLFoundation::NSURLResponse> response;
  std::shared_ptr<const ORLFoundation::NSError> error;
  std::int64_t sent = 0, expectedToSend = 0, sentSum = 0;
  std::int64_t written = 0, expectedToWrite = 0, writtenSum = 0;
  std::int64_t received = 0, expected = 0;  ///< As the task told them at the end.
  std::string location;                     ///< Of the downloaded file.
  int completions = 0;

  [[nodiscard]] ORLFoundation::NSInteger code() const { return error ? error->code() : 0; }
  [[nodiscard]] ORLFoundation::NSInteger status() const {
    const auto http = std::dynamic_pointer_cast<ORLFoundation::NSHTTPURLResponse>(response);
    return http ? http->statusCode() : 0;
  }
  [[nodiscard]] std::string field(std::string_view name) const {
    const auto http = std::dynamic_pointer_cast<ORLFoundation::NSHTTPURLResponse>(response);
    return http ? http->valueForHTTPHeaderField(name).value_or("") : "";
  }
};

/// Keeps what a session tells, by task, and lets tests wait for it. Runs of equal events are one.
class RecordingDelegate : public ORLFoundation::NSURLSessionDataDelegate,
                          public ORLFoundation::NSURLSessionDownloadDelegate {
 public:
  using Session = std::shared_ptr<ORLFoundation::NSURLSession>;
  using Task = std::shared_ptr<ORLFoundation::NSURLSessionTask>;

  void URLSessionDidBecomeInvalidWithError(
      const Session& /*session*/,
      const std::shared_ptr<const ORLFoundation::NSError>& error) override {
    const std::lock_guard guard(lock_);
    EXPECT_EQ(error, nullptr);
    ++invalidations_;
    changed_.notify_all();
  }
  void URLSessionTaskDidSendBodyData(const Session& /*session*/, const Task& task,
                                     const ORLFoundation::NSURLSessionSentBody& body) override {
    const std::lock_guard guard(lock_);
    TaskRecord& record = note(*task, "sent");
    record.sent = body.totalBytesSent;
    record.expectedToSend = body.totalBytesExpectedToSend;
    record.sentSum += body.didSendBodyData;
  }
  void URLSessionDataTaskDidReceiveData(
      const Session& /*session*/,
      const std::shared_ptr<ORLFoundation::NSURLSessionDataTask>& dataTask,
      const ORLFoundation::NSData& data) override {
    const std::lock_guard guard(lock_);
    TaskRecord& record = note(*dataTask, "data");
    if (keepsBodies_) record.body.append(data.text());
    record.received += static_cast<std::int64_t>(data.length());
    EXPECT_EQ(dataTask->countOfBytesReceived(), record.received);
    changed_.notify_all();
  }
  void URLSessionDownloadTaskDidFinishDownloadingToURL(
      const Session& /*session*/,
      const std::shared_ptr<ORLFoundation::NSURLSessionDownloadTask>& downloadTask,
      const ORLFoundation::NSURL& location) override {
    const std::lock_guard guard(lock_);
    TaskRecord& record = note(*downloadTask, "download");
    record.location = location.path();
    if (keepsBodies_) record.body = contentOf(location.path());
  }
  void URLSessionDownloadTaskDidWriteData(
      const Session& /*session*/,
      const std::shared_ptr<ORLFoundation::NSURLSessionDownloadTask>& downloadTask,
      const ORLFoundation::NSURLSessionWrittenData& data) override {
    const std::lock_guard guard(lock_);
    TaskRecord& record = note(*downloadTask, "written");
    record.written = data.totalBytesWritten;
    record.writtenSum += data.didWriteData;
    record.expectedToWrite = data.totalBytesExpectedToWrite;
    changed_.notify_all();
  }
  void URLSessionTaskDidCompleteWithError(
      const Session& /*session*/, const Task& task,
      const std::shared_ptr<const ORLFoundation::NSError>& error) override {
    const std::lock_guard guard(lock_);
    TaskRecord& record = note(*task, "complete");
    record.response = task->response();
    record.error = error;
    record.received = task->countOfBytesReceived();
    record.expected = task->countOfBytesExpectedToReceive();
    ++record.completions;
    ++completions_;
    changed_.notify_all();
  }

  /// Waits at most half a minute, for a test that then fails.
  template <class Condition>
  bool waitUntil(const Condition& condition) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, std::chrono::seconds(30), condition);
  }
  bool waitForCompletions(std::size_t count) {
    return waitUntil([&] { return completions_ >= count; });
  }
  bool waitForInvalidation() {
    return waitUntil([&] { return invalidations_ > 0; });
  }
  TaskRecord record(ORLFoundation::NSUInteger identifier) {
    const std::lock_guard guard(lock_);
    return records_.size() > identifier ? records_[identifier] : TaskRecord();
  }
  std::size_t completions() {
    const std::lock_guard guard(lock_);
    return completions_;
  }

  bool keepsBodies_ = true;
  std::size_t completions_ = 0;
  int invalidations_ = 0;

 private:
  TaskRecord& note(const ORLFoundation::NSURLSessionTask& task, const char* event) {
    const auto identifier = static_cast<std::size_t>(task.taskIdentifier());
    if (records_.size() <= identifier) records_.resize(identifier + 1);
    TaskRecord& record = records_[identifier];
    if (record.events.empty() || record.events.back() != event) record.events.emplace_back(event);
    return record;
  }

  std::mutex lock_;
  std::condition_variable changed_;
  std::vector<TaskRecord> records_;
};

/// A session with a delegate that keeps what it is told; invalidated with the object.
class Loading {
 public:
  explicit Loading(
      std::shared_ptr<ORLFoundation::NSURLSessionConfiguration> configuration = nullptr,
      std::shared_ptr<ORLFoundation::NSOperationQueue> queue = nullptr)
      : delegate(std::make_shared<RecordingDelegate>()),
        session(ORLFoundation::NSURLSession::sessionWithConfiguration(
            std::move(configuration), delegate, std::move(queue))) {}
  ~Loading() { session->invalidateAndCancel(); }
  Loading(const Loading&) = delete;
  Loading& operator=(const Loading&) = delete;

  /// Runs a task to its end.
  TaskRecord data(const std::shared_ptr<ORLFoundation::NSURLRequest>& request) {
    return run(session->dataTaskWithRequest(request));
  }
  TaskRecord data(const ORLFoundation::NSURL& url) {
    return data(ORLFoundation::NSURLRequest::requestWithURL(url));
  }
  TaskRecord download(const std::shared_ptr<ORLFoundation::NSURLRequest>& request) {
    return run(session->downloadTaskWithRequest(request));
  }
  TaskRecord download(const ORLFoundation::NSURL& url) {
    return download(ORLFoundation::NSURLRequest::requestWithURL(url));
  }
  TaskRecord run(const std::shared_ptr<ORLFoundation::NSURLSessionTask>& task) {
    const std::size_t before = delegate->completions();
    task->resume();
    EXPECT_TRUE(delegate->waitForCompletions(before + 1)) << "no completion";
    return delegate->record(task->taskIdentifier());
  }

  const std::shared_ptr<RecordingDelegate> delegate;
  const std::shared_ptr<ORLFoundation::NSURLSession> session;
};

}  // namespace orlftest
