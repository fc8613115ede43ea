/// The world in which the rows of session vectors are played: named requests and files, a delegate,
/// handlers and a logger that write down what is called. The page of the vectors tells the forms.
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>
#include <ORLFoundation/web/session/ORLFURLSession_testing.h>
#include <ORLFoundation/web/session/ORLFURLSession_values_testing.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>

#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

using ORLFoundation::NSError;
using ORLFoundation::NSURL;
using ORLFoundation::NSURLRequest;
using ORLFoundation::NSURLResponse;
using ORLFoundation::ORLFURLSession;
using ORLFoundation::ORLFURLSessionTask;

class SessionWorld {
 public:
  using Queue = std::shared_ptr<ORLFoundation::NSOperationQueue>;
  using TaskPtr = std::shared_ptr<ORLFURLSessionTask>;

  /// `base` is what addresses that begin with a slash stand under.
  explicit SessionWorld(const Json& in, std::string base = "")
      : in_(in),
        base_(std::move(base)),
        log_(ORLFoundation::NSSetLogSink, [this](std::string_view line) {
          note({"NSLog", std::string(line)});
        }) {
    const Json requests = in.value("requests", Json::object());
    for (const auto& [name, request] : requests.items()) nameRequest(requestOf(request), name);
    const Json files = in.value("files", Json::object());
    for (const auto& [name, file] : files.items()) {
      folder_.write("files/" + name, dataOfVector(file.at("content")).text());
      if (file.contains("date")) touch(name, file.at("date"));
    }
    std::filesystem::create_directories(folder_.path() / "files");
    for (const char* name : {"D", "C"}) {
      queues_[name] = std::make_shared<ORLFoundation::NSOperationQueue>();
      queues_[name]->setMaxConcurrentOperationCount(1);
    }
  }
  /// A session and a task that has not ended hold each other.
  virtual ~SessionWorld() {
    if (session_) session_->URLSessionDidBecomeInvalidWithError(nullptr, nullptr);
  }
  SessionWorld(const SessionWorld&) = delete;
  SessionWorld& operator=(const SessionWorld&) = delete;

 protected:
  void makeSession() {
    session_ = ORLFURLSession::initWithConfiguration(nullptr, makeDelegate(), queues_.at("D"));
    if (in_.value("logger", true)) session_->setLogger(makeLogger());
    observer_ = ORLFoundation::NSNotificationCenter::defaultCenter()->addObserverForName(
        std::string(ORLFoundation::ORLFURLSessionDidResumeTaskNotification), session_,
        [this](const auto& notification) { hear(notification); });
  }

  virtual void hearNotification(const TaskPtr& task) = 0;
  [[nodiscard]] virtual Json vectorOfResponse(const std::shared_ptr<NSURLResponse>& response) = 0;

  void note(Json event) {
    const std::lock_guard guard(lock_);
    events_.push_back(std::move(event));
  }
  Json takeEvents() {
    const std::lock_guard guard(lock_);
    return std::exchange(events_, Json::array());
  }

  // Names

  [[nodiscard]] NSURL addressOf(const std::string& text) const {
    return *NSURL::URLWithString(text.starts_with("/") ? base_ + text : text);
  }
  [[nodiscard]] std::string shownAddress(const std::optional<NSURL>& url) const {
    if (!url) return "nil";
    const std::string& text = url->absoluteString();
    return !base_.empty() && text.starts_with(base_) ? text.substr(base_.size()) : text;
  }
  [[nodiscard]] std::shared_ptr<NSURLRequest> requestOf(const Json& fields) const {
    using namespace ORLFoundation;
    const auto made = NSMutableURLRequest::requestWithURL(addressOf(fields.at("url")));
    made->setHTTPMethod(fields.at("method").get<std::string>());
    if (fields.contains("body") && !fields.at("body").is_null())
      made->setHTTPBody(dataOfVector(fields.at("body")));
    return copyOf<NSURLRequest>(made);
  }
  void nameRequest(const std::shared_ptr<NSURLRequest>& request, const std::string& name) {
    requests_[name] = request;
  }
  [[nodiscard]] std::shared_ptr<NSURLRequest> request(const Json& name) const {
    return name.is_null() ? nullptr : requests_.at(name.get<std::string>());
  }
  [[nodiscard]] Json nameOf(const std::shared_ptr<NSURLRequest>& request) const {
    if (!request) return nullptr;
    for (const auto& [name, each] : requests_)
      if (each == request) return name;
    return "a request without a name";
  }
  [[nodiscard]] std::string pathOf(const std::string& file) const {
    return (folder_.path() / "files" / file).string();
  }
  [[nodiscard]] std::optional<NSURL> file(const Json& name) const {
    if (name.is_null()) return std::nullopt;
    const std::string text = name.get<std::string>();
    for (const Json& other : in_.value("notFiles", Json::array()))
      if (other == name) return NSURL::URLWithString("https://example.com/" + text);
    return NSURL::fileURLWithPath(pathOf(text));
  }
  [[nodiscard]] Json nameOf(const std::optional<NSURL>& url) const {
    if (!url) return nullptr;
    const std::string root = (folder_.path() / "files").string() + "/";
    if (!url->isFileURL() || !url->path().starts_with(root)) return url->lastPathComponent();
    return withoutIdentifier(url->path().substr(root.size()));
  }
  void touch(const std::string& name, const std::string& date) const {
    setFileDate(pathOf(name), date);
  }
  [[nodiscard]] Json filesNow() const {
    Json files = Json::object();
    const auto root = folder_.path() / "files";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
      const std::string name = entry.path().lexically_relative(root).string();
      if (entry.is_regular_file() && !name.starts_with("location"))
        files[withoutIdentifier(name)] = vectorOfBytes(folder_.read("files/" + name));
    }
    return files;
  }

  [[nodiscard]] std::string nameOf(const TaskPtr& task) const {
    for (const auto& [name, each] : tasks_)
      if (each == task) return name;
    return "a task without a name";
  }
  [[nodiscard]] Json vectorOfResult(const ORLFoundation::id& result) const {
    if (result.isNil()) return nullptr;
    if (const auto data = result.as<ORLFoundation::NSMutableData>())
      return {{"data", vectorOfBytes(data->text())}};
    if (const auto* url = result.get<NSURL>()) return {{"url", nameOf(std::optional(*url))}};
    return "a result of another kind";
  }
  [[nodiscard]] Json readByHandler(const TaskPtr& task) {
    return {{"canceled", task->canceled()},
            {"request", nameOf(task->request())},
            {"response", vectorOfResponse(task->response())},
            {"result", vectorOfResult(task->result())},
            {"state", task->state()}};
  }

  // Handlers

  [[nodiscard]] ORLFURLSessionTask::Completion handler(const Json& name) {
    if (name.is_null()) return nullptr;
    return [this, text = name.get<std::string>()](const TaskPtr& task, const auto& error) {
      note({"completion", text, nameOf(task), vectorOfError(error), readByHandler(task)});
      const std::size_t call = handlerCalls_[text]++;
      perform(in_.value("handlers", Json::object()).value(text, Json::array()), call, task);
    };
  }
  /// The actions of the list for a call, on a task.
  void perform(const Json& lists, std::size_t call, const TaskPtr& task) {
    if (call >= lists.size()) return;
    for (const Json& action : lists[call]) act(action, 1, task);
  }
  /// Whether it is an action; its arguments begin at a place.
  bool act(const Json& step, std::size_t at, const TaskPtr& task) {
    const std::string what = step[0];
    if (what == "resume") {
      task->resume();
    } else if (what == "cancel") {
      task->cancel();
    } else if (what == "forward") {
      task->forward(request(step[at]));
    } else if (what == "forwardCompletion") {
      task->forwardCompletion(request(step[at]), handler(step[at + 1]));
    } else if (what == "forwardDownload") {
      task->forwardDownload(request(step[at]), file(step[at + 1]), handler(step[at + 2]));
    } else {
      return false;
    }
    return true;
  }
  /// `make`; whether a task came.
  bool make(const std::string& name, const Json& fields) {
    const auto asked = request(fields.at("request"));
    const auto completion = handler(fields.value("completion", Json()));
    TaskPtr task;
    if (fields.contains("update")) {
      task = session_->taskWithRequestToUpdateFile(asked, file(fields.at("update")), completion);
    } else if (fields.contains("destination")) {
      task =
          session_->taskWithRequestDestination(asked, file(fields.at("destination")), completion);
    } else {
      task = session_->taskWithRequest(asked, completion);
    }
    if (!task) return false;
    tasks_[name] = task;
    if (task->request() != asked && task->request()->HTTPMethod() == "HEAD")
      nameRequest(task->request(), fields.at("request").get<std::string>() + ":HEAD");
    if (fields.contains("completionQueue") && !fields.at("completionQueue").is_null())
      task->setCompletionQueue(queues_.at(fields.at("completionQueue").get<std::string>()));
    for (const Json& kind : fields.value("progress", Json::array())) {
      const auto item = std::make_shared<ORLFoundation::ORLFProgressItem>();
      items_[name + "." + kind.get<std::string>()] = item;
      kind == "upload" ? task->setUploadProgressItem(item) : task->setDownloadProgressItem(item);
    }
    return true;
  }

  const Json& in_;
  const std::string base_;
  const TemporaryFolder folder_;
  std::map<std::string, Queue> queues_;
  std::map<std::string, std::shared_ptr<ORLFoundation::ORLFProgressItem>> items_;
  std::map<std::string, TaskPtr> tasks_;
  std::shared_ptr<ORLFURLSession> session_;
  std::vector<ORLFoundation::ORLFURLSessionDelegate::Answer> answers_;

 private:
  class Delegate;

  [[nodiscard]] static std::string withoutIdentifier(const std::string& name) {
    constexpr std::size_t kIdentifier = 36;
    const auto slash = name.rfind('/');
    if (slash == std::string::npos || name.size() - slash - 1 != kIdentifier) return name;
    return name.substr(0, slash + 1) + "{UUID}";
  }
  [[nodiscard]] std::shared_ptr<ORLFoundation::ORLFURLSessionDelegate> makeDelegate();
  [[nodiscard]] std::shared_ptr<TellingLogger> makeLogger();
  template <class Told>
  void noteTold(const char* operation, const Told& told, std::string_view identifier,
                std::initializer_list<Json> first, std::initializer_list<Json> last = {}) {
    Json event = Json::array({operation});
    for (const Json& value : first) event.push_back(value);
    Json owner = "another session";
    if (told.session == session_) owner = "another task";
    for (const auto& [name, task] : tasks_)
      if (session_->uniqueIDForTask(task) == identifier) owner = name;
    event.push_back(owner);
    event.push_back(std::string(told.method));
    event.push_back(shownAddress(told.url));
    for (const Json& value : last) event.push_back(value);
    note(std::move(event));
  }
  void hear(const ORLFoundation::NSNotification& notification) {
    const auto task = notification.userInfo()
                          ->objectForKey(ORLFoundation::ORLFURLSessionNotificationUserInfoTaskKey)
                          .as<ORLFURLSessionTask>();
    hearNotification(task);
    perform(in_.value("onNotification", Json::array()), notifications_++, task);
  }

  std::mutex lock_;
  Json events_ = Json::array();
  std::map<std::string, std::shared_ptr<NSURLRequest>> requests_;
  std::map<std::string, std::size_t> handlerCalls_;
  std::size_t notifications_ = 0;
  std::shared_ptr<ORLFoundation::NSNotificationObserver> observer_;
  const ORLFoundation::Replaced<ORLFoundation::NSLogSink> log_;
};

class SessionWorld::Delegate final : public ORLFoundation::ORLFURLSessionDelegate {
 public:
  explicit Delegate(SessionWorld& world) : world_(world) {}

  bool hasSessionDidFail() const override {
    return world_.in_.at("delegate").value("implements", true);
  }
  void sessionDidFail(const std::shared_ptr<ORLFURLSession>& session,
                      ORLFoundation::NSUInteger didFail, Answer authentication) override {
    world_.note({session == world_.session_ ? "session:didFail:authentication:" : "another session",
                 didFail});
    const Json answers = world_.in_.at("delegate").value("answers", Json::array());
    const std::size_t call = world_.answers_.size();
    world_.answers_.push_back(authentication);
    if (call >= answers.size()) {
      authentication(nullptr, NSError::errorWithDomain("Test", 99));
    } else if (answers[call] != "later") {
      authentication(world_.request(answers[call].value("request", Json())),
                     errorOfVector(answers[call].value("error", Json())));
    }
  }

 private:
  SessionWorld& world_;
};

inline std::shared_ptr<ORLFoundation::ORLFURLSessionDelegate> SessionWorld::makeDelegate() {
  if (in_.value("delegate", Json()).is_null()) return nullptr;
  return std::make_shared<Delegate>(*this);
}

inline std::shared_ptr<TellingLogger> SessionWorld::makeLogger() {
  const auto textOrNull = [](const auto& text) { return text ? vectorOfBytes(*text) : Json(); };
  auto logger = std::make_shared<TellingLogger>();
  logger->request = [=, this](const auto& told) {
    noteTold("session:logRequestWithID:method:url:body:", told, told.logRequestWithID, {},
             {textOrNull(told.body)});
  };
  logger->response = [=, this](const auto& told) {
    noteTold("session:logResponse:statusCode:forID:method:url:", told, told.forID,
             {textOrNull(told.logResponse), told.statusCode});
  };
  logger->download = [this](const auto& told) {
    noteTold("session:logDownload:statusCode:forID:method:url:", told, told.forID,
             {nameOf(told.logDownload), told.statusCode});
  };
  logger->error = [this](const auto& told) {
    noteTold("session:logError:statusCode:forID:method:url:", told, told.forID,
             {vectorOfError(told.logError), told.statusCode});
  };
  return logger;
}

}  // namespace orlftest
