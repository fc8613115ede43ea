#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/ORLFURLSessionTask_testing.h>

#include <deque>
#include <random>
#include <set>
#include <sstream>

namespace ORLFoundation {
namespace {

using namespace orlftest;

/// What a completion handler does at its calls, by number, and what the delegate answers.
enum class Deed : std::uint8_t { nothing, forwards, forwardsOnly, forwardsToItself, cancels };
enum class Reply : std::uint8_t { retries, givesUp, waits };

struct Plan {
  std::vector<Deed> deeds;
  std::vector<Reply> replies;
  bool hasDelegate = false;
};

/// The steps of the operations on one task, word by word, on one thread.
class TaskModel {
 public:
  explicit TaskModel(const Plan& plan) : plan_(plan) {}

  void resume() {
    if (state_ != -1) return;
    data_ = 0;
    hasResponse_ = false;
    result_ = 0;
    isCanceled_ = false;
    int made = 0;
    if (!isInvalidated_) {
      made = ++platformTasks_;
      note("make ", made);
      table_.insert(made);
    }
    if (made > 0) {
      note("log request ", request_);
      connection_ = made;
      note("resume ", made);
    }
    if (connection_ == 0) return;
    note("notify ", state_);
    state_ = 0;
  }
  void cancel() {
    if (state_ != 0) return;
    isCanceled_ = true;
    state_ = 2;
    if (connection_ > 0) note("cancel ", connection_);
  }
  void forward(int request) {
    if (state_ != 0) return note("condition failed ", 0);
    request_ = request;
    state_ = -1;
  }
  void data(int number) {
    if (table_.count(number) > 0) ++data_;
  }
  void complete(int number, int error, int status) {
    if (table_.count(number) == 0) return;
    connection_ = 0;
    process(error, status);
    table_.erase(number);
  }
  void invalidate() {
    isInvalidated_ = true;
    hasNoDelegate_ = true;
  }
  void hold(bool isHeld) {
    isHeld_ = isHeld;
    run();
  }
  void answer() {
    if (kept_.empty()) return;
    const auto callback = kept_.front();
    kept_.pop_front();
    callback(true);
    run();
  }
  void run() {
    while (!isHeld_ && !queue_.empty()) {
      const auto operation = queue_.front();
      queue_.pop_front();
      operation();
    }
  }
  [[nodiscard]] int platformTasks() const { return platformTasks_; }
  [[nodiscard]] std::string told() {
    std::ostringstream text;
    text << events_.str() << "| state " << state_ << " canceled " << isCanceled_ << " request "
         << request_ << " failures " << failures_ << " connection " << connection_ << " response "
         << hasResponse_ << " result " << result_;
    events_.str("");
    return text.str();
  }

 private:
  void note(const char* what, int number) { events_ << what << number << "; "; }
  void process(int error, int status) {
    const bool isRefused = error == -1013;
    if (error != 0 && !isRefused) {
      data_ = 0;
      note("log error ", error);
      end(0, status != 0, error);
    } else if (status != 401 && !isRefused) {
      note(data_ > 0 ? "log data " : "log download ", status);
      end(data_, status != 0, 0);
    } else {
      ++failures_;
      queue_.push_back([=, this] { ask(error, status); });
    }
  }
  void ask(int error, int status) {
    const auto callback = [=, this](bool retries) {
      if (retries) {
        request_ = 1;
        state_ = -1;
        return resume();
      }
      note("log error ", error);
      end(0, status != 0, -7);
    };
    if (!plan_.hasDelegate || hasNoDelegate_) {
      note("log error ", error);
      return end(0, status != 0, -1013);
    }
    queue_.push_back([=, this] {
      const auto reply = plan_.replies[static_cast<std::size_t>(asked_++) % plan_.replies.size()];
      if (reply == Reply::waits) return kept_.push_back(callback);
      callback(reply == Reply::retries);
    });
  }
  void end(int result, bool hasResponse, int error) {
    const int request = request_;
    hasResponse_ = hasResponse;
    result_ = result;
    queue_.push_back([=, this] {
      note("handle ", error);
      note("in ", state_);
      doDeed();
      if (request_ == request) state_ = 3;
    });
  }
  void doDeed() {
    switch (plan_.deeds[static_cast<std::size_t>(handled_++) % plan_.deeds.size()]) {
      case Deed::forwards:
        forward(2);
        return resume();
      case Deed::forwardsOnly:
        return forward(3);
      case Deed::forwardsToItself:
        return forward(request_);
      case Deed::cancels:
        return cancel();
      case Deed::nothing:
        return;
    }
  }

  const Plan plan_;
  std::ostringstream events_;
  int state_ = -1, request_ = 0, failures_ = 0, connection_ = 0, result_ = 0, data_ = 0;
  int platformTasks_ = 0, asked_ = 0, handled_ = 0;
  bool isCanceled_ = false, hasResponse_ = false, isInvalidated_ = false, hasNoDelegate_ = false;
  bool isHeld_ = false;
  std::set<int> table_;
  std::deque<std::function<void()>> queue_;
  std::deque<std::function<void(bool)>> kept_;
};

/// The same steps on a task.
class TaskUnderTest {
 public:
  explicit TaskUnderTest(const Plan& plan)
      : plan_(plan),
        log_(NSSetLogSink, [this](std::string_view) { note("condition failed ", 0); }),
        provider_([this](const auto&, const std::string& call, auto number) {
          const auto task = static_cast<int>(number);
          if (call == "dataTaskWithRequest:") note("make ", task);
          if (call == "resume") note("resume ", task);
          if (call == "cancel") note("cancel ", task);
        }) {
    std::shared_ptr<ORLFURLSessionDelegate> delegate;
    if (plan.hasDelegate)
      delegate = std::make_shared<AnsweringDelegate>(
          [this](NSUInteger, const auto& answer) { reply(answer); });
    session_ = ORLFURLSession::initWithConfiguration(nullptr, delegate);
    session_->setLogger(makeLogger());
    for (int i = 0; i < 4; ++i)
      requests_.push_back(requestTo("https://example.com/" + std::to_string(i)));
    task_ = session_->taskWithRequest(requests_[0], [this](const auto& task, const auto& error) {
      note("handle ", error ? static_cast<int>(error->code()) : 0);
      note("in ", static_cast<int>(task->state()));
      doDeed();
    });
    token_ = NSNotificationCenter::defaultCenter()->addObserverForName(
        std::string(ORLFURLSessionDidResumeTaskNotification), session_,
        [this](const auto&) { note("notify ", static_cast<int>(task_->state())); });
  }
  ~TaskUnderTest() {
    hold(false);
    session_->invalidateSessionCancelingTasks(true);
    provider_.last()->tellInvalid();
  }
  TaskUnderTest(const TaskUnderTest&) = delete;
  TaskUnderTest& operator=(const TaskUnderTest&) = delete;

  void resume() { task_->resume(); }
  void cancel() { task_->cancel(); }
  void forward(int request) { task_->forward(requests_.at(static_cast<std::size_t>(request))); }
  void data(int number) {
    provider_.last()->tellData(static_cast<std::size_t>(number), NSData(std::string_view("x")));
  }
  void complete(int number, int error, int status) {
    const auto at = static_cast<std::size_t>(number);
    provider_.last()->exchange(at).state->setResponse(status == 0 ? nullptr : answerOf(status));
    provider_.last()->tellCompleted(at, error == 0 ? nullptr : urlError(error));
  }
  void invalidate() { session_->invalidateSessionCancelingTasks(false); }
  void hold(bool isHeld) {
    session_->delegateQueue()->setSuspended(isHeld);
    run();
  }
  void answer() {
    if (kept_.empty()) return;
    const auto callback = kept_.front();
    kept_.pop_front();
    callback(requests_[1], nullptr);
    run();
  }
  void run() {
    const auto queue = session_->delegateQueue();
    while (!queue->isSuspended() && queue->operationCount() > 0)
      queue->waitUntilAllOperationsAreFinished();
  }
  [[nodiscard]] std::string told() {
    std::ostringstream text;
    const auto connection = task_->connection();
    const auto data = task_->result().as<NSMutableData>();
    text << events_.str() << "| state " << task_->state() << " canceled " << task_->canceled()
         << " request " << indexOf(task_->request()) << " failures " << task_->failures()
         << " connection " << (connection ? connection->taskIdentifier() : 0) << " response "
         << (task_->response() != nullptr) << " result " << (data ? data->length() : 0);
    events_.str("");
    return text.str();
  }

 private:
  void note(const char* what, int number) { events_ << what << number << "; "; }
  [[nodiscard]] int indexOf(const RequestPointer& request) const {
    const auto found = std::find(requests_.begin(), requests_.end(), request);
    return static_cast<int>(found - requests_.begin());
  }
  std::shared_ptr<TellingLogger> makeLogger() {
    auto logger = std::make_shared<TellingLogger>();
    logger->request = [this](const auto& told) {
      note("log request ", told.url->absoluteString().back() - '0');
    };
    logger->response = [this](const auto& told) {
      note("log data ", static_cast<int>(told.statusCode));
    };
    logger->download = [this](const auto& told) {
      note("log download ", static_cast<int>(told.statusCode));
    };
    logger->error = [this](const auto& told) {
      note("log error ", told.logError ? static_cast<int>(told.logError->code()) : 0);
    };
    return logger;
  }
  void reply(const ORLFURLSessionDelegate::Answer& answer) {
    const auto reply = plan_.replies[static_cast<std::size_t>(asked_++) % plan_.replies.size()];
    if (reply == Reply::waits) return kept_.push_back(answer);
    answer(reply == Reply::retries ? requests_[1] : nullptr, urlError(-7));
  }
  void doDeed() {
    switch (plan_.deeds[static_cast<std::size_t>(handled_++) % plan_.deeds.size()]) {
      case Deed::forwards:
        forward(2);
        return resume();
      case Deed::forwardsOnly:
        return forward(3);
      case Deed::forwardsToItself:
        return task_->forward(task_->request());
      case Deed::cancels:
        return cancel();
      case Deed::nothing:
        return;
    }
  }

  const Plan plan_;
  std::ostringstream events_;
  int asked_ = 0, handled_ = 0;
  std::vector<RequestPointer> requests_;
  std::deque<ORLFURLSessionDelegate::Answer> kept_;
  const Replaced<NSLogSink> log_;
  const ScriptedProvider provider_;
  std::shared_ptr<ORLFURLSession> session_;
  TaskPointer task_;
  std::shared_ptr<NSNotificationObserver> token_;
};

/// One step, the same for both, of its random numbers.
template <class Task>
void step(Task& task, unsigned kind, unsigned choice, int platformTasks) {
  constexpr std::array kErrors{0, 0, -1005, -1013};
  constexpr std::array kStatuses{0, 200, 401, 500};
  const int number = platformTasks > 0 ? 1 + static_cast<int>(choice / 16) % platformTasks : 0;
  switch (kind) {
    case 0:
    case 1:
      task.resume();
      break;
    case 2:
      task.cancel();
      break;
    case 3:
      task.forward(static_cast<int>(choice % 4));
      break;
    case 4:
      if (number > 0) task.data(number);
      break;
    case 5:
    case 6:
    case 7:
      if (number > 0) task.complete(number, kErrors[choice % 4], kStatuses[choice / 4 % 4]);
      break;
    case 8:
      task.hold(choice % 2 == 0);
      break;
    case 9:
      task.answer();
      break;
    default:
      if (choice % 8 == 0) task.invalidate();
  }
  task.run();
}

TEST(ORLFURLSessionTaskWalks, GoAsTheStepsOfTheOperationsSay) {
  constexpr int kWalks = 200, kSteps = 40;
  std::mt19937 random(18);
  const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  for (int walk = 0; walk < kWalks && !testing::Test::HasFailure(); ++walk) {
    Plan plan;
    plan.hasDelegate = below(3) > 0;
    for (int i = 0; i < 5; ++i) {
      plan.deeds.push_back(static_cast<Deed>(below(5)));
      plan.replies.push_back(static_cast<Reply>(below(3)));
    }
    TaskModel model(plan);
    TaskUnderTest task(plan);
    std::string way;
    for (int i = 0; i < kSteps && !testing::Test::HasFailure(); ++i) {
      const unsigned kind = below(11), choice = below(256);
      const int platformTasks = model.platformTasks();
      step(model, kind, choice, platformTasks);
      step(task, kind, choice, platformTasks);
      way += " " + std::to_string(kind) + ":" + std::to_string(choice);
      ASSERT_EQ(model.told(), task.told()) << "walk " << walk << way;
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
