// The algorithms of the queue written out word for word, for one thread, and random scripts played
// on both.
#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <ORLFoundation/tasks/operations/ORLFOperationQueue_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::Json;

struct ModelOperation {
  std::string name;
  bool implementsInstance = false;
  Json instance, group;
  bool isBarrier = false, isCancelled = false, hasBegun = false, isFinished = false;
  bool wasAdded = false;
  std::function<void()> completionBlock;
  std::vector<ModelOperation*> dependencies;
  Json calls = Json::array();
};

class ModelQueue {
 public:
  std::vector<ModelOperation*> operations;
  bool logsActivity = false;
  std::vector<std::function<void()>>* targetQueue = nullptr;
  std::vector<std::string> began;

  void addOperation(ModelOperation* operation) {
    if (operation == nullptr) return;
    const bool isLogged = logsActivity;
    if (operation->implementsInstance && !operation->instance.is_null())
      cancelOperationForSingleInstanceID(operation->instance);
    if (logsActivity || operation->completionBlock) wrap(operation, isLogged);
    makeOperationDependOnAllBarrierOperations(operation);
    baseAdd({operation});
  }
  void addOperations(const std::vector<ModelOperation*>& batch) {
    if (batch.empty()) return;
    for (ModelOperation* operation : batch) {
      if (operation->implementsInstance && !operation->instance.is_null())
        cancelOperationForSingleInstanceID(operation->instance);
      if (operation->completionBlock) wrap(operation, false);
    }
    for (ModelOperation* operation : batch) makeOperationDependOnAllBarrierOperations(operation);
    baseAdd(batch);
  }
  void addToGroup(ModelOperation* operation, const Json& group,
                  const std::function<void(ModelOperation*, bool)>& completion) {
    if (operation == nullptr) return;
    operation->group = group;
    operation->completionBlock = [operation, own = operation->completionBlock, completion] {
      if (own) own();
      if (completion) completion(operation, !operation->isCancelled);
      operation->group = nullptr;
    };
    addOperation(operation);
  }
  void cancelAllOperationsForGroup(const Json& group) {
    if (group.is_null()) return;
    for (ModelOperation* each : std::vector(operations))
      if (each->group == group) cancel(each);
  }
  void cancelOperationForSingleInstanceID(const Json& instance) {
    if (instance.is_null()) return;
    for (ModelOperation* each : std::vector(operations))
      if (each->implementsInstance && each->instance == instance) cancel(each);
  }
  void pauseQueueWithBlock(ModelOperation* made) {
    made->isBarrier = true;
    for (ModelOperation* each : operations) made->dependencies.push_back(each);
    baseAdd({made});
  }
  void makeOperationDependOnAllBarrierOperations(ModelOperation* operation) {
    for (ModelOperation* each : operations)
      if (each->isBarrier) operation->dependencies.push_back(each);
  }

  void cancel(ModelOperation* operation) {
    if (operation->isFinished) return;
    operation->isCancelled = true;
    if (operation->wasAdded && !operation->hasBegun) finish(operation);
  }
  void finish(ModelOperation* operation) {
    operation->isFinished = true;
    std::erase(operations, operation);
    if (const auto block = operation->completionBlock) block();
    beginWhatCan();
  }

 private:
  void wrap(ModelOperation* operation, bool isLogged) {
    operation->completionBlock = [this, isLogged, own = operation->completionBlock] {
      static_cast<void>(isLogged);  // The debug log does nothing.
      if (!own) return;
      if (targetQueue != nullptr) {
        targetQueue->push_back(own);
      } else {
        own();
      }
    };
  }
  void baseAdd(const std::vector<ModelOperation*>& batch) {
    for (ModelOperation* each : batch) {
      each->wasAdded = true;
      operations.push_back(each);
    }
    for (ModelOperation* each : batch)
      if (each->isCancelled) finish(each);
    beginWhatCan();
  }
  void beginWhatCan() {
    for (ModelOperation* each : std::vector(operations)) {
      if (each->hasBegun || each->isFinished) continue;
      if (!std::ranges::all_of(each->dependencies, &ModelOperation::isFinished)) continue;
      each->hasBegun = true;
      began.push_back(each->name);
    }
  }
};

/// Makes a random script step by step, and what is expected of each.
class ScriptMaker {
 public:
  explicit ScriptMaker(unsigned seed) : random_(seed), hasTarget_(chance(30)) {
    if (hasTarget_) queue_.targetQueue = &kept_;
    queue_.logsActivity = chance(20);
    in_["queues"]["q"] = {{"logsActivity", queue_.logsActivity}};
    in_["targets"] = {"t"};
    if (hasTarget_) in_["queues"]["q"]["target"] = "t";
    for (char name = 'a'; name < 'i'; ++name) declare(std::string(1, name));
    for (int i = 0; i < 14; ++i) step();
    while (!queue_.operations.empty()) finishOne();
    if (hasTarget_) deliver();
  }
  [[nodiscard]] const Json& in() const { return in_; }
  [[nodiscard]] Json out() const {
    Json never = Json::object();
    for (const auto& [name, each] : operations_)
      if (each.isCancelled && !each.hasBegun && each.wasAdded)
        never[name] = {{"calls", each.calls}, {"group", each.group}};
    return {{"steps", states_}, {"neverRan", never}};
  }

 private:
  [[nodiscard]] bool chance(unsigned percent) { return random_() % 100 < percent; }
  [[nodiscard]] Json oneOf(std::initializer_list<Json> choices) {
    return *(choices.begin() + random_() % choices.size());
  }

  void declare(const std::string& name) {
    ModelOperation& made = operations_[name];
    Json told = Json::object();
    made.name = name;
    if (!hasTarget_ && chance(40)) {
      made.implementsInstance = true;
      made.instance = told["instance"] = oneOf({"x", "y", nullptr});
    }
    if (chance(20)) made.group = told["group"] = oneOf({"G", "g", ""});
    if (chance(15)) told["barrier"] = made.isBarrier = true;
    if (chance(50)) {
      told["callback"] = true;
      made.completionBlock = [&made] { made.calls.push_back({"callback", made.group}); };
    }
    in_["operations"][name] = told;
  }

  void step() {
    switch (random_() % (hasTarget_ ? 8 : 12)) {
      case 0:
        return addOne();
      case 1:
        return addBatch();
      case 2:
        return addToGroup();
      case 3:
        return chance(50) ? addOne() : pause();
      case 4:
        return addToGroup();
      case 5:
        return finishOne();
      case 6:
        return hasTarget_ && chance(50) ? deliver() : finishOne();
      case 7:
        return depend();
      case 8:
        return cancelGroup();
      case 9:
        return cancelInstance();
      case 10:
        return cancelOne();
      default:
        return mark();
    }
  }
  /// One that was not added yet, null for none.
  [[nodiscard]] ModelOperation* fresh() {
    std::vector<ModelOperation*> all;
    for (auto& [name, each] : operations_)
      if (!each.wasAdded && !isInstanceRace(each.instance)) all.push_back(&each);
    return all.empty() ? nullptr : all[random_() % all.size()];
  }
  /// Whether one cancel would reach an operation and another one that waits for it: which of them
  /// still begins is a matter of time.
  [[nodiscard]] bool isRace(const std::function<bool(const ModelOperation&)>& isReached) const {
    return std::ranges::any_of(queue_.operations, [&](const ModelOperation* each) {
      return isReached(*each) &&
             std::ranges::any_of(each->dependencies, [&](const ModelOperation* other) {
               return !other->isFinished && isReached(*other);
             });
    });
  }
  [[nodiscard]] bool isInstanceRace(const Json& instance) const {
    return isRace([&](const ModelOperation& each) {
      return each.implementsInstance && !instance.is_null() && each.instance == instance;
    });
  }
  [[nodiscard]] static Json nameOf(const ModelOperation* operation) {
    return operation != nullptr ? Json(operation->name) : Json(nullptr);
  }
  void addOne() {
    ModelOperation* const operation = fresh();
    queue_.addOperation(operation);
    close({"addOperation:", "q", nameOf(operation)}, {operation});
  }
  void addBatch() {
    std::vector<ModelOperation*> batch;
    Json names = Json::array();
    for (std::size_t left = random_() % 4; left > 0; --left) {
      ModelOperation* const each = fresh();
      if (each == nullptr || std::ranges::count(batch, each) > 0) continue;
      batch.push_back(each);
      names.push_back(each->name);
    }
    queue_.addOperations(batch);
    close({"addOperations:waitUntilFinished:", "q", names, false}, batch);
  }
  void addToGroup() {
    ModelOperation* const operation = fresh();
    const Json group = oneOf({"G", "g", "", nullptr});
    const bool hasCompletion = chance(70);
    std::function<void(ModelOperation*, bool)> completion;
    if (hasCompletion)
      completion = [](ModelOperation* ended, bool wasFinished) {
        ended->calls.push_back({"completion", wasFinished, ended->group});
      };
    queue_.addToGroup(operation, group, completion);
    close({"addOperation:group:completion:", "q", nameOf(operation), group, hasCompletion},
          {operation});
  }
  void pause() {
    const std::string name = "fence" + std::to_string(++fences_);
    ModelOperation& made = operations_[name];
    made.name = name;
    in_["operations"][name] = {{"kind", "block"}};
    queue_.pauseQueueWithBlock(&made);
    close({"pauseQueueWithBlock:", "q", name}, {&made});
  }
  void finishOne() {
    std::vector<ModelOperation*> running;
    for (ModelOperation* each : queue_.operations)
      if (each->hasBegun) running.push_back(each);
    if (running.empty()) return;
    ModelOperation* const operation = running[random_() % running.size()];
    queue_.finish(operation);
    close({"finish", operation->name}, {});
  }
  void deliver() {
    const auto due = std::exchange(kept_, {});
    for (const auto& block : due) block();
    close({"deliver", "t"}, {});
  }
  /// Of one that is not added yet on one that is, so that no circle comes about.
  void depend() {
    ModelOperation* const operation = fresh();
    if (operation == nullptr) return;
    if (queue_.operations.empty() || chance(40)) {
      queue_.makeOperationDependOnAllBarrierOperations(operation);
      return close({"makeOperationDependOnAllBarrierOperations:", "q", operation->name},
                   {operation});
    }
    ModelOperation* const other = queue_.operations[random_() % queue_.operations.size()];
    operation->dependencies.push_back(other);
    close({"addDependency:", operation->name, other->name}, {operation});
  }
  void cancelGroup() {
    const Json group = oneOf({"G", "g", "", nullptr});
    if (isRace([&](const ModelOperation& each) { return each.group == group; })) return;
    queue_.cancelAllOperationsForGroup(group);
    close({"cancelAllOperationsForGroup:", "q", group}, {});
  }
  void cancelInstance() {
    const Json instance = oneOf({"x", "y", nullptr});
    if (isInstanceRace(instance)) return;
    queue_.cancelOperationForSingleInstanceID(instance);
    close({"cancelOperationForSingleInstanceID:", "q", instance}, {});
  }
  void cancelOne() {
    auto chosen = std::next(operations_.begin(), static_cast<long>(random_() % operations_.size()));
    queue_.cancel(&chosen->second);
    close({"cancel", chosen->first}, {});
  }
  /// Of one that has not ended: that one's group is for its completion to read.
  void mark() {
    if (queue_.operations.empty()) return;
    ModelOperation* const operation = queue_.operations[random_() % queue_.operations.size()];
    if (chance(50)) {
      operation->isBarrier = chance(50);
      return close({"orlfSetIsBarrierOperation:", operation->name, operation->isBarrier}, {});
    }
    operation->group = oneOf({"G", "g", nullptr});
    close({"orlfSetGroupID:", operation->name, operation->group}, {});
  }

  /// The step, and the state after it, for which these operations were added or given dependencies.
  void close(const Json& step, const std::vector<ModelOperation*>& touched) {
    in_["steps"].push_back(step);
    Json state = {{"operations", {{"q", Json::array()}}}};
    for (auto& [name, each] : operations_) {
      if (each.isCancelled && cancelledBefore_.insert(name).second)
        state["cancelled"].push_back(name);
      if (each.isCancelled && !each.hasBegun) continue;
      if (std::ranges::count(queue_.operations, &each) > 0)
        state["operations"]["q"].push_back(name);
      if (!each.group.is_null()) state["groups"][name] = each.group;
      for (std::size_t i = callsBefore_[name]; i < each.calls.size(); ++i)
        state["calls"][name].push_back(each.calls[i]);
      callsBefore_[name] = each.calls.size();
      if (std::ranges::count(touched, &each) > 0) tellOfTouched(state, each);
    }
    std::ranges::sort(queue_.began);
    for (const std::string& name : std::exchange(queue_.began, {})) state["began"].push_back(name);
    states_.push_back(state);
  }
  static void tellOfTouched(Json& state, const ModelOperation& operation) {
    if (operation.completionBlock && operation.wasAdded)
      state["completionBlock"].push_back(operation.name);
    std::set<std::string> unfinished;
    for (const ModelOperation* each : operation.dependencies)
      if (!each->isFinished) unfinished.insert(each->name);
    if (!unfinished.empty()) state["dependencies"][operation.name] = unfinished;
  }

  std::mt19937 random_;
  const bool hasTarget_;
  std::vector<std::function<void()>> kept_;
  ModelQueue queue_;
  std::map<std::string, ModelOperation> operations_;
  std::set<std::string> cancelledBefore_;
  std::map<std::string, std::size_t> callsBefore_;
  int fences_ = 0;
  Json in_;
  Json states_ = Json::array();
};

TEST(ORLFOperationQueue, DoesWhatItsAlgorithmsSayWordForWord) {
  const unsigned scripts = orlftest::kSlowdown > 1 ? 40 : 200;
  for (unsigned seed = 0; seed < scripts; ++seed) {
    const ScriptMaker made(seed);
    ASSERT_EQ(orlftest::OperationPlayer::playScript(made.in(), made.out()), "")
        << "seed " << seed << '\n'
        << made.in().dump() << '\n'
        << made.out().dump();
  }
}

}  // namespace
}  // namespace ORLFoundation
