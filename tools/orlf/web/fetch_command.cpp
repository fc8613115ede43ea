#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>
#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>
#include <ORLFoundation/web/session/ORLFURLSession.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "files/file_argument.h"
#include "io/atomic_file.h"
#include "progress/job_progress.h"
#include "session.h"
#include "web/fetch_headers.h"
#include "web/field_mask.h"
#include "web/web_address.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
namespace fs = std::filesystem;

using TaskPointer = std::shared_ptr<ORLFURLSessionTask>;
using ErrorPointer = std::shared_ptr<const NSError>;

constexpr std::int64_t kLargestBody = std::int64_t{1} << 30;  // in bytes
constexpr std::size_t kMostRetries = 3;
constexpr NSInteger kUnauthorized = 401;

struct FetchArguments {
  std::string url;
  std::optional<std::string> output, log;
  bool ifNewer = false;
  std::vector<std::string> masks, headers, retries;
};

/// The logger tells nobody that it cannot write, so this is found out before it has to. A new file
/// is for its user alone, as the logger would make it.
void expectWritableLog(const NSURL& file) {
  constexpr mode_t kForItsUserAlone = 0600;
  const std::string path = file.path();
  const int log = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY,
                         kForItsUserAlone);
  if (log < 0) throw JobFailure(path + ": cannot be written: " + std::strerror(errno));
  struct stat opened {};
  const bool isFile = ::fstat(log, &opened) == 0 && S_ISREG(opened.st_mode);
  ::close(log);
  if (!isFile) throw JobFailure(path + ": cannot be written: it is not a file");
}

bool isSameFile(const std::string& one, const std::string& other) {
  std::error_code ignored;
  return fs::path(one).lexically_normal() == fs::path(other).lexically_normal() ||
         fs::equivalent(one, other, ignored);
}

/// What the old file keeps its place for: the server has none that is newer.
struct NothingNewer {};

/// The header fields to try, one after the other, when the server wants authentication.
class Retries final : public ORLFURLSessionDelegate {
 public:
  explicit Retries(std::vector<HeaderField> fields) : fields_(std::move(fields)) {}

  void setTask(const TaskPointer& task) { task_ = task; }
  void sessionDidFail(const std::shared_ptr<ORLFURLSession>& /*session*/, NSUInteger /*didFail*/,
                      Answer authentication) override {
    const auto task = task_.lock();
    authentication(task ? next(*task) : nullptr,
                   NSError::errorWithDomain(NSURLErrorDomain, NSURLErrorUserAuthenticationRequired,
                                            userInfo()));
  }
  /// The task's request with the fields up to the next one; null where there is none left. A
  /// request without the last one that was tried gets that first: HEAD may have been let in by it.
  [[nodiscard]] std::shared_ptr<NSURLRequest> next(const ORLFURLSessionTask& task) {
    const auto request = task.request();
    if (tried_ == 0 ||
        request->valueForHTTPHeaderField(fields_[tried_ - 1].name) == fields_[tried_ - 1].value) {
      if (tried_ == std::min(fields_.size(), kMostRetries)) return nullptr;
      ++tried_;
    }
    const auto changed = std::static_pointer_cast<NSMutableURLRequest>(request->mutableCopy());
    for (std::size_t i = 0; i < tried_; ++i) changed->setValue(fields_[i].value, fields_[i].name);
    return copyOf<NSURLRequest>(changed);
  }

 private:
  [[nodiscard]] static std::shared_ptr<NSDictionary> userInfo() {
    return NSDictionary::dictionaryWithEntries({{"statusCode", kUnauthorized}});
  }

  const std::vector<HeaderField> fields_;
  std::size_t tried_ = 0;
  std::weak_ptr<ORLFURLSessionTask> task_;
};

bool isUnauthorized(const ErrorPointer& error) {
  return error && error->userInfo()->objectForKey("statusCode").as<NSInteger>() == kUnauthorized;
}

class Fetch {
 public:
  Fetch(Session& session, const FetchArguments& arguments)
      : session_(session), arguments_(arguments), url_(readAddressArgument(arguments.url)) {
    if (arguments.ifNewer && !arguments.output)
      throw UsageFailure("--if-newer: give the file to compare with by -o FILE");
    if (arguments.ifNewer && !isWebAddress(url_))
      throw UsageFailure("--if-newer: only servers tell what is newer, so give http or https");
    if (!arguments.masks.empty() && !arguments.log)
      throw UsageFailure("--mask: nothing is logged without --log FILE");
    if (std::ranges::count(arguments.masks, "") > 0)
      throw UsageFailure("--mask: expected the name of a field, got ''");
    if (arguments.log && arguments.output &&
        isSameFile(absolutePathOfArgument("--log", *arguments.log),
                   absolutePathOfArgument("-o", *arguments.output)))
      throw UsageFailure("--log: -o would put another file in its place");
    const auto headers = readHeaders("--header", arguments.headers);
    const auto retries = readHeaders("--retry-auth", arguments.retries);
    request_ = makeRequest(headers);
    retries_ = std::make_shared<Retries>(retries);
    const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
    configuration->setMaximumBodyLength(kLargestBody);
    web_ = ORLFURLSession::initWithConfiguration(configuration, retries_);
    if (arguments.log) web_->setLogger(makeLogger(headers, retries));
  }
  ~Fetch() { web_->invalidateSessionCancelingTasks(true); }
  Fetch(const Fetch&) = delete;
  Fetch& operator=(const Fetch&) = delete;

  void run() {
    if (arguments_.output) return download();
    const TaskPointer task = web_->taskWithRequest(request_, hearing());
    perform(task);
    const auto body = task->result().as<NSMutableData>();
    print(body ? body->text() : std::string_view());
  }

 private:
  [[nodiscard]] std::shared_ptr<NSURLRequest> makeRequest(
      const std::vector<HeaderField>& headers) const {
    const auto request = NSMutableURLRequest::requestWithURL(url_);
    for (const HeaderField& field : headers) request->setValue(field.value, field.name);
    return copyOf<NSURLRequest>(request);
  }
  [[nodiscard]] std::shared_ptr<ORLFURLSessionFileLogger> makeLogger(
      const std::vector<HeaderField>& headers, const std::vector<HeaderField>& retries) const {
    const NSURL file = fileURLOfArgument("--log", *arguments_.log);
    expectWritableLog(file);
    auto logger = std::make_shared<ORLFURLSessionFileLogger>(file, "orlf fetch");
    for (const auto* fields : {&headers, &retries})
      for (const std::string& secret : secretsOf(*fields)) logger->addSecret(secret);
    logger->addSecret(passwordOf(url_));
    const auto credentials =
        ORLFURLSessionLogReplacement::initWithMatchExpression(R"((?<=://)[^/?#]*@)", 0, "***@");
    logger->addRequestURLProcessor(credentials);
    logger->addDownloadURLProcessor(credentials);
    if (arguments_.masks.empty()) return logger;
    const auto mask = std::make_shared<FieldMask>(arguments_.masks);
    logger->addRequestURLProcessor(mask);
    logger->addRequestBodyProcessor(mask);
    logger->addResponseBodyProcessor(mask);
    logger->addDownloadURLProcessor(mask);
    logger->addErrorProcessor(mask);
    return logger;
  }

  /// Keeps the error. A refused download is sent anew from here: it ends before anybody is asked
  /// for authentication.
  [[nodiscard]] ORLFURLSessionTask::Completion hearing() {
    return [this](const TaskPointer& task, const ErrorPointer& error) {
      error_ = error;
      const auto destination = task->destinationURL();
      if (!destination || !isUnauthorized(error)) return;
      const auto request = retries_->next(*task);
      if (!request) return;
      task->forwardDownload(request, destination, hearing());
      task->resume();
    };
  }
  /// Throws JobFailure for what does not succeed.
  void perform(const TaskPointer& task) {
    retries_->setTask(task);
    const auto item = makeProgressItem();
    task->setDownloadProgressItem(item);
    task->resume();
    task->waitUntilFinished();
    if (item) item->removeFromIndicator();
    if (error_) throw JobFailure(shownAddress(url_) + ": " + failureText(*error_));
    const auto http = orlfHTTPURLResponse(task->response());
    status_ = http ? http->statusCode() : 0;
    if (status_ >= kFirstFailingStatus)
      throw JobFailure(shownAddress(url_) + ": " + statusText(status_));
  }
  [[nodiscard]] std::shared_ptr<ORLFProgressItem> makeProgressItem() const {
    const auto job = jobProgressItem();
    if (!job) return nullptr;
    setJobProgressUnit(ProgressUnit::bytes);
    auto item = job->childProgressItemWithTotalCount(0);
    item->setMessage("Fetching " + shownAddress(url_));
    item->addToIndicator();
    return item;
  }

  void download() {
    const std::string path = absolutePathOfArgument("-o", *arguments_.output);
    const bool compares = arguments_.ifNewer && fs::exists(path);
    try {
      writeFileAtomically(path, [&](const std::string& beside) { write(path, beside, compares); });
    } catch (const NothingNewer&) {
      return printFile(path, false);
    }
    printFile(path, true);
  }
  /// Downloads to a file beside the path. With its date that file stands for the one at the path.
  void write(const std::string& path, const std::string& beside, bool compares) {
    struct stat made {};
    if (::stat(beside.c_str(), &made) != 0) throw JobFailure(path + ": cannot be written");
    const auto place = NSURL::fileURLWithPath(beside);
    TaskPointer task;
    if (compares) {
      fs::last_write_time(beside, fs::last_write_time(path));
      task = web_->taskWithRequestToUpdateFile(request_, place, hearing());
    } else {
      task = web_->taskWithRequestDestination(request_, place, hearing());
    }
    perform(task);
    if (!task->destinationURL()) throw NothingNewer();
    // The platform's file is for the user alone; this one has the mode that files have.
    if (::chmod(beside.c_str(), made.st_mode) != 0) throw JobFailure(path + ": cannot be written");
  }

  void print(std::string_view body) {
    if (!session_.options.json) {
      session_.out << body;
      return;
    }
    Json told = {{"url", shownAddress(url_)}, {"status", status_}, {"bytes", body.size()}};
    if (internal::base::isUTF8(body)) {
      told["body"] = std::string(body);
    } else {
      told["base64"] = internal::base::base64Text(body);
    }
    printJson(session_.out, told);
  }
  void printFile(const std::string& path, bool isFetched) {
    const auto bytes = fs::file_size(path);
    if (session_.options.json) {
      printJson(session_.out, {{"url", shownAddress(url_)},
                               {"status", status_},
                               {"file", path},
                               {"fetched", isFetched},
                               {"bytes", bytes}});
    } else if (isFetched) {
      session_.out << *arguments_.output << ": " << bytes << " bytes\n";
    } else {
      session_.out << *arguments_.output << ": the server names nothing newer\n";
    }
  }

  Session& session_;
  const FetchArguments& arguments_;
  const NSURL url_;
  std::shared_ptr<NSURLRequest> request_;
  std::shared_ptr<Retries> retries_;
  std::shared_ptr<ORLFURLSession> web_;
  ErrorPointer error_;
  NSInteger status_ = 0;
};

}  // namespace

Job declareFetchCommand(Options& options) {
  options.describe(
      "Print what stands at an address, or write it to a file, whole or not at all. A status of "
      "400\n"
      "or above, a body of more than 1 GiB and a broken connection are failures.");
  auto arguments = std::make_shared<FetchArguments>();
  options.required("URL", arguments->url, "An address of http, https, file or data");
  options.text("-o", arguments->output, "The file to write; a failure leaves the old one");
  options.flag("--if-newer", arguments->ifNewer,
               "Only where the server's date is that of the file or later");
  options.text("--log", arguments->log, "Append what is sent and received to this file");
  options.list("--mask", arguments->masks,
               "Fields of JSON, forms and queries whose values the log shows as ***");
  options.each("--header", arguments->headers,
               "A field to send, 'Name: value', or @FILE with one a line, or - to be asked for it");
  options.each("--retry-auth", arguments->retries,
               "The same, each to be tried when the server wants authentication; 3 at most");
  return [arguments](Session& session) { Fetch(session, *arguments).run(); };
}

}  // namespace orlftool
