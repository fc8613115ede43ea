#include <ORLFoundation/tasks/async/AsyncSemaphore.h>

#include <ORLFoundation/tasks/async/AsyncSemaphore_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::SemaphorePlayer;

TEST(AsyncSemaphore, AgreesWithVectors) {
  orlftest::runJsonVectors("queue_semaphore", {{"semaphore", SemaphorePlayer::playScript}});
}

/// The semaphore's algorithms written out word for word, for tasks that end as soon as they are
/// resumed.
class SemaphoreModel {
 public:
  explicit SemaphoreModel(std::int64_t value) : value_(value) {}

  [[nodiscard]] bool isParked(const std::string& task) const {
    return std::ranges::any_of(suspensions_, [&](const auto& each) { return each.task == task; });
  }
  [[nodiscard]] bool isEmpty() const { return suspensions_.empty(); }
  [[nodiscard]] bool wouldOverflow() const { return value_ == kMost; }

  Json wait(const std::string& task) {
    --value_;
    if (value_ >= 0) return state({{task, "returned"}});
    suspensions_.insert(suspensions_.begin(), {task, "suspended"});
    return state({});
  }
  Json waitUnlessCancelled(const std::string& task) {
    const bool isCancelled = cancelled_.count(task) > 0;
    --value_;
    if (value_ >= 0) {
      if (!isCancelled) return state({{task, "returned"}});
      ++value_;
      return state({{task, "cancelled"}});
    }
    Suspension suspension{task, "pending"};
    if (isCancelled) {  // The handler runs at once.
      ++value_;
      suspension.state = "cancelled";
    }
    if (suspension.state == "cancelled") return state({{task, "cancelled"}});
    suspension.state = "suspendedUnlessCancelled";
    suspensions_.insert(suspensions_.begin(), suspension);
    return state({});
  }
  Json cancel(const std::string& task) {
    if (!cancelled_.insert(task).second) return state({});
    const auto found = std::ranges::find_if(suspensions_, [&](const Suspension& each) {
      return each.task == task && each.state == "suspendedUnlessCancelled";
    });
    if (found == suspensions_.end()) return state({});  // No handler is installed.
    ++value_;
    suspensions_.erase(found);
    return state({{task, "cancelled"}});
  }
  Json signal() {
    ++value_;
    Json ended = Json::object();
    const bool wasParked = !suspensions_.empty();
    if (wasParked) {
      ended[suspensions_.back().task] = "returned";
      suspensions_.pop_back();
    }
    Json told = state(ended);
    told["result"] = wasParked;
    return told;
  }

 private:
  struct Suspension {
    std::string task, state;
  };
  static constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

  [[nodiscard]] Json state(const Json& ended) const {
    Json told = {{"value", value_}, {"suspensions", Json::array()}};
    for (const Suspension& each : suspensions_)
      told["suspensions"].push_back({each.task, each.state});
    if (!ended.empty()) told["ended"] = ended;
    return told;
  }

  std::int64_t value_;
  std::vector<Suspension> suspensions_;
  std::set<std::string> cancelled_;
};

/// A random script and what is expected of it.
std::pair<Json, Json> randomSemaphoreScript(std::mt19937& random) {
  const std::int64_t values[] = {0, 0, 1, 2, 3, std::numeric_limits<std::int64_t>::max() - 1};
  const std::int64_t value = values[random() % std::size(values)];
  SemaphoreModel model(value);
  Json steps = Json::array();
  Json states = Json::array();
  const auto add = [&](const Json& step, const Json& state) {
    steps.push_back(step);
    states.push_back(state);
  };
  for (int left = 30; left > 0; --left) {
    const std::string task(1, static_cast<char>('a' + static_cast<char>(random() % 6)));
    const auto what = random() % 10;
    if (what < 3 && model.wouldOverflow()) {
      add({"signal"}, {{"trap", true}});
      break;
    }
    if (what < 3) {
      add({"signal"}, model.signal());
    } else if (what == 3) {
      add({"cancel", task}, model.cancel(task));
    } else if (!model.isParked(task)) {
      what < 6 ? add({"wait", task}, model.wait(task))
               : add({"waitUnlessCancelled", task}, model.waitUnlessCancelled(task));
    }
  }
  if (steps.empty() || !states.back().contains("trap"))
    add({"destroy"}, model.isEmpty() ? Json::object() : Json({{"trap", true}}));
  return {{{"value", value}, {"steps", steps}}, {{"steps", states}}};
}

TEST(AsyncSemaphore, DoesWhatItsAlgorithmsSayWordForWord) {
  std::mt19937 random(11);
  int trapped = 0;
  for (int i = 0; i < 1'000; ++i) {
    auto [in, out] = randomSemaphoreScript(random);
    // A trap takes a process of its own: a few do.
    const bool ends = out["steps"].back().contains("trap");
    if (ends && ++trapped > 20) {
      in["steps"].erase(in["steps"].size() - 1);
      out["steps"].erase(out["steps"].size() - 1);
    }
    ASSERT_EQ(SemaphorePlayer::playScript(in, out), "") << in.dump() << '\n' << out.dump();
  }
  EXPECT_GT(trapped, 20);
}

}  // namespace
}  // namespace ORLFoundation
