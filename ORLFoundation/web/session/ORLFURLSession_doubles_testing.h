/// What a script of session vectors plays with beside tasks: receivers that are none, and a file
/// manager that answers as its row says.
#pragma once

#include <ORLFoundation/web/session/ORLFURLSession_script_testing.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace orlftest {

using ORLFoundation::NSErrorSlot;

class SessionScript::Receiver final : public ORLFoundation::NSURLSessionDataDelegate,
                                      public ORLFoundation::NSURLSessionDownloadDelegate {
  using Session = std::shared_ptr<ORLFoundation::NSURLSession>;
  using Task = std::shared_ptr<ORLFoundation::NSURLSessionTask>;
  using DataTask = std::shared_ptr<ORLFoundation::NSURLSessionDataTask>;
  using DownloadTask = std::shared_ptr<ORLFoundation::NSURLSessionDownloadTask>;

 public:
  Receiver(SessionScript& script, const Json& step) : script_(script), step_(step) {}

  void URLSessionTaskDidCompleteWithError(const Session&, const Task& task,
                                          const std::shared_ptr<const NSError>& error) override {
    receive("complete", task, {vectorOfError(error)});
  }
  void URLSessionTaskDidSendBodyData(const Session&, const Task& task,
                                     const ORLFoundation::NSURLSessionSentBody& body) override {
    receive("sent", task, {body.totalBytesSent, body.totalBytesExpectedToSend});
  }
  void URLSessionDataTaskDidReceiveData(const Session&, const DataTask& task,
                                        const ORLFoundation::NSData& data) override {
    receive("data", task, {vectorOfBytes(data.text())});
  }
  void URLSessionDownloadTaskDidFinishDownloadingToURL(const Session&, const DownloadTask& task,
                                                       const NSURL& location) override {
    receive("download", task, {location.lastPathComponent()});
  }
  void URLSessionDownloadTaskDidWriteData(
      const Session&, const DownloadTask& task,
      const ORLFoundation::NSURLSessionWrittenData& data) override {
    receive("written", task, {data.totalBytesWritten, data.totalBytesExpectedToWrite});
  }
  void URLSessionDownloadTaskDidResumeAtOffset(const Session&, const DownloadTask& task,
                                               std::int64_t offset,
                                               std::int64_t expected) override {
    receive("resumedAt", task, {offset, expected});
  }

 private:
  void receive(const std::string& event, const Task& task, std::initializer_list<Json> values) {
    const bool isOptional = event == "complete" || event == "sent" || event == "data";
    if (isOptional && std::find(step_[2].begin(), step_[2].end(), event) == step_[2].end()) return;
    Json told = {"received", step_[1], event, task->taskIdentifier()};
    for (const Json& value : values) told.push_back(value);
    script_.note(std::move(told));
    if (step_.size() > 3 && step_[3].contains(event))
      for (const Json& step : step_[3].at(event)) script_.doStep(step);
    script_.isRegistering_ = false;
  }

  SessionScript& script_;
  const Json step_;
};

inline void SessionScript::makeReceiver(const Json& step) {
  receivers_[step[1]] = std::make_shared<Receiver>(*this, step);
}

inline Json SessionScript::registerReceiver(const Json& step) {
  const auto receiver = step[3].is_null() ? nullptr : receivers_.at(step[3]);
  isRegistering_ = true;
  std::shared_ptr<ORLFoundation::NSURLSessionTask> made;
  if (step[1] == "data") {
    made = session_->dataTaskWithRequest(request(step[2]), receiver);
  } else {
    made = session_->downloadTaskWithRequest(request(step[2]), receiver);
  }
  return made ? Json(made->taskIdentifier()) : Json();
}

inline std::string SessionScript::nameOfReceiver(const ORLFURLSession::Receiver& receiver) const {
  for (const auto& [name, each] : receivers_)
    if (each == receiver) return name;
  return nameOf(std::dynamic_pointer_cast<ORLFURLSessionTask>(receiver));
}

/// A file manager that answers as its row says.
class SessionScript::Files final : public ORLFoundation::internal::session::DownloadFiles {
 public:
  explicit Files(SessionScript& script) : script_(script), answers_(script.in_.at("fileAnswers")) {}

  std::optional<NSURL> replace(const NSURL& item, const NSURL& with, NSErrorSlot error) override {
    script_.note({"replaceItemAtURL:withItemAtURL:", script_.nameOf(std::optional(item)),
                  script_.nameOf(std::optional(with))});
    const Json answer = take("replace");
    if (fails(answer, error)) return std::nullopt;
    NSURL resulting = item;
    if (answer.contains("resulting")) {
      resulting = *script_.file(answer.at("resulting"));
      std::filesystem::remove(item.path());
    }
    std::filesystem::rename(with.path(), resulting.path());
    return resulting;
  }
  std::optional<NSURL> temporaryFolder(ORLFoundation::NSUInteger directory,
                                       ORLFoundation::NSUInteger inDomain,
                                       const NSURL& appropriateFor, bool create,
                                       NSErrorSlot error) override {
    script_.note({"URLForDirectory:", directory, inDomain,
                  script_.nameOf(std::optional(appropriateFor)), create});
    if (fails(take("temporary"), error)) return std::nullopt;
    const NSURL made = *script_.file("temporary" + std::to_string(++folders_));
    std::filesystem::create_directory(made.path());
    return made;
  }
  bool copy(const NSURL& item, const NSURL& to, NSErrorSlot error) override {
    script_.note({"copyItemAtURL:toURL:", script_.nameOf(std::optional(item)),
                  script_.nameOf(std::optional(to))});
    if (fails(take("copy"), error)) return false;
    std::filesystem::copy_file(item.path(), to.path());
    return true;
  }

 private:
  Json take(const std::string& call) {
    const Json answers = answers_.value(call, Json::array());
    const std::size_t number = calls_[call]++;
    return number < answers.size() ? answers[number] : Json::object();
  }
  static bool fails(const Json& answer, NSErrorSlot error) {
    if (!answer.contains("error")) return false;
    if (error != nullptr) *error = errorOfVector(answer.at("error"));
    return true;
  }

  SessionScript& script_;
  const Json answers_;
  std::map<std::string, std::size_t> calls_;
  int folders_ = 0;
};

inline std::shared_ptr<ORLFoundation::internal::session::DownloadFiles> SessionScript::makeFiles() {
  return std::make_shared<Files>(*this);
}

}  // namespace orlftest
