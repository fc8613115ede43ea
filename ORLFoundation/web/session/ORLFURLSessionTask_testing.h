/// One session over a scripted platform, for tests that say what happens in their own words.
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase_testing.h>
#include <ORLFoundation/web/session/ORLFURLSession_testing.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

using TaskPointer = std::shared_ptr<ORLFoundation::ORLFURLSessionTask>;
using ErrorPointer = std::shared_ptr<const ORLFoundation::NSError>;
using RequestPointer = std::shared_ptr<ORLFoundation::NSURLRequest>;

inline RequestPointer requestTo(const std::string& address) {
  return ORLFoundation::NSURLRequest::requestWithURL(ORLFoundation::NSURL::URLWithString(address));
}
inline ErrorPointer urlError(ORLFoundation::NSInteger code) {
  return ORLFoundation::NSError::errorWithDomain(ORLFoundation::NSURLErrorDomain, code);
}
inline std::shared_ptr<ORLFoundation::NSHTTPURLResponse> answerOf(ORLFoundation::NSInteger status) {
  return std::make_shared<ORLFoundation::NSHTTPURLResponse>(
      ORLFoundation::NSURL::URLWithString("https://example.com/a"), status);
}

/// Answers as a function says.
struct AnsweringDelegate final : ORLFoundation::ORLFURLSessionDelegate {
  using Ask = std::function<void(ORLFoundation::NSUInteger failures, Answer answer)>;
  explicit AnsweringDelegate(Ask asked) : ask(std::move(asked)) {}
  void sessionDidFail(const std::shared_ptr<ORLFoundation::ORLFURLSession>& /*session*/,
                      ORLFoundation::NSUInteger didFail, Answer authentication) override {
    ask(didFail, std::move(authentication));
  }
  const Ask ask;
};

class SessionTaskTest : public testing::Test {
 protected:
  /// What a handler was called with.
  struct Ended {
    TaskPointer task;
    ErrorPointer error;
    ORLFoundation::NSInteger state;
  };

  SessionTaskTest()
      : provider_([this](const auto&, const std::string& call, auto number) {
          const std::lock_guard guard(lock_);
          calls_.push_back(number == 0 ? call : call + " " + std::to_string(number));
        }) {
    session_ = ORLFoundation::ORLFURLSession::initWithConfiguration(nullptr);
  }

  /// A session and a task that has not ended hold each other.
  ~SessionTaskTest() override {
    if (session_) session_->URLSessionDidBecomeInvalidWithError(nullptr, nullptr);
  }

  [[nodiscard]] ORLFoundation::ORLFURLSessionTask::Completion recording() {
    return [this](const TaskPointer& task, const ErrorPointer& error) {
      const std::lock_guard guard(lock_);
      ended_.push_back({task, error, task->state()});
    };
  }
  [[nodiscard]] TaskPointer dataTask() { return session_->taskWithRequest(request_, recording()); }
  [[nodiscard]] std::shared_ptr<ScriptedPlatform> platform() const { return provider_.last(); }
  void answer(std::size_t number, ORLFoundation::NSInteger status, std::string_view body = "") {
    platform()->exchange(number).state->setResponse(answerOf(status));
    if (!body.empty()) platform()->tellData(number, ORLFoundation::NSData(body));
    platform()->tellCompleted(number);
  }
  void settle() { session_->delegateQueue()->waitUntilAllOperationsAreFinished(); }
  [[nodiscard]] std::vector<std::string> calls() {
    const std::lock_guard guard(lock_);
    return calls_;
  }
  [[nodiscard]] std::vector<Ended> ended() {
    const std::lock_guard guard(lock_);
    return ended_;
  }

  const RequestPointer request_ = requestTo("https://example.com/a");
  const RequestPointer other_ = requestTo("https://example.com/b");
  std::mutex lock_;
  std::vector<std::string> calls_;
  std::vector<Ended> ended_;
  ScriptedProvider provider_;
  std::shared_ptr<ORLFoundation::ORLFURLSession> session_;
};

}  // namespace orlftest
