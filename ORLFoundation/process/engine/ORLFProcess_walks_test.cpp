// Random moves on random trees, followed beside the process by a model that knows no steps: it goes
// by paths of names, searches by recursion, and keeps past and future on two stacks.
#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

#include <random>

namespace ORLFoundation {
namespace {

using orlftest::nameOfStep;
using orlftest::RecordingDelegate;
using orlftest::Texts;

using Name = std::optional<std::string>;
using Path = Texts;
using Place = std::optional<Path>;

std::string textOfName(const Name& name) { return name.value_or("nil"); }

std::string joined(const Path& path) {
  std::string text;
  for (const std::string& name : path) text += (text.empty() ? "" : ".") + name;
  return text;
}

Name nameOfPlace(const Place& place) { return place ? Name(joined(*place)) : std::nullopt; }

/// As many parts as points and one.
Path partsOf(const std::string& text) {
  Path parts(1);
  for (const char c : text) {
    if (c == '.') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

Path below(Path path, const std::string& name) {
  path.push_back(name);
  return path;
}

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}
  std::size_t below(std::size_t count) { return engine_() % count; }
  bool oneIn(std::size_t count) { return below(count) == 0; }
  template <class T>
  const T& of(const std::vector<T>& values) {
    return values[below(values.size())];
  }

 private:
  std::mt19937 engine_;
};

const Texts kNames = {"a", "b", "c"};
const Texts kTargets = {"a", "b", "c", "gone"};
const Texts kEvents = {"next", "skip", "done", "lost"};

/// What the transitions of a step lead to; "" is the way out of its parent.
struct Plan {
  Name first;
  std::map<std::string, std::string> targets;
  std::map<std::string, std::string> responses;
};

/// The model's tree: every path that exists, with its plan.
class World {
 public:
  explicit World(Dice& dice) { grow(dice, {"root"}); }

  [[nodiscard]] const Plan* at(const Path& path) const {
    const auto plan = plans_.find(path);
    return plan == plans_.end() ? nullptr : &plan->second;
  }
  /// Where whoever enters the path comes to stand.
  [[nodiscard]] Place entered(const Path& path) const {
    const Plan* const plan = at(path);
    if (!plan) return std::nullopt;
    return plan->first ? entered(below(path, *plan->first)) : path;
  }
  [[nodiscard]] std::vector<Path> paths() const {
    std::vector<Path> all;
    for (const auto& entry : plans_) all.push_back(entry.first);
    return all;
  }
  [[nodiscard]] std::shared_ptr<ORLFProcessStep> stepAt(const Path& path) const {
    auto step = std::make_shared<ORLFProcessStep>(path.back());
    const Plan& plan = plans_.at(path);
    step->setIntialStepIdentifier(plan.first);
    for (const auto& [event, target] : plan.targets)
      step->setSiblingIdentifier(target.empty() ? id(NSNull()) : id(target), event);
    for (const auto& [event, response] : plan.responses) step->setResponse(response, event);
    for (const std::string& name : kNames)
      if (at(below(path, name))) step->addChildStep(stepAt(below(path, name)));
    return step;
  }

 private:
  void grow(Dice& dice, const Path& path) {
    constexpr std::size_t kDeepest = 5;
    Plan plan;
    if (path.size() == 1 || (path.size() < kDeepest && !dice.oneIn(3))) {
      if (!dice.oneIn(8)) plan.first = dice.of(kNames);
      for (const std::string& name : kNames)
        if (!dice.oneIn(5)) grow(dice, below(path, name));
    }
    for (const std::string& event : kEvents) {
      if (dice.oneIn(5)) continue;
      plan.targets[event] = dice.oneIn(3) ? "" : dice.of(kTargets);
      if (!dice.oneIn(4)) plan.responses[event] = dice.of(kEvents);
    }
    plans_[path] = std::move(plan);
  }

  std::map<Path, Plan> plans_;
};

class Model {
 public:
  /// Null stands for no delegate.
  Model(const World& world, const RecordingDelegate* delegate)
      : world_(world), delegate_(delegate) {}

  Texts calls;

  [[nodiscard]] Name here() const { return nameOfPlace(here_); }
  void put(Place place) { here_ = std::move(place); }
  [[nodiscard]] std::size_t index() const { return past_.size(); }
  [[nodiscard]] Texts history() const {
    Texts texts;
    for (const Name& name : past_) texts.push_back(textOfName(name));
    for (auto name = future_.rbegin(); name != future_.rend(); ++name)
      texts.push_back(textOfName(*name));
    return texts;
  }
  [[nodiscard]] bool stoodOn() const { return here_ && !past_.empty() && past_.back() == here(); }
  [[nodiscard]] bool canBack() const { return past_.size() > (stoodOn() ? 1U : 0U); }
  [[nodiscard]] bool canForward() const { return !future_.empty(); }

  Name run() {
    if (!here_) {
      here_ = world_.entered({"root"});
      remember(here_);
    }
    return here();
  }

  Name advance(const std::string& event, const std::string& data) {
    if (!mayLeave()) return std::nullopt;
    const Place from = here_;
    const Found found = from ? search(*from, event) : Found{kLost, {}};
    const Place to = agreed(found);
    if (to != from) {
      remember(to);
      here_ = to;
    }
    tell("didLeaveStep", textOfName(nameOfPlace(from)));
    if (to) tell("didAdvanceToStep", joined(*to) + " " + data);
    if (!to && found.kind != kLost)
      tell("didEndProcess", textOfName(responseAt(*from, event)) + " " + data);
    return nameOfPlace(to);
  }

  Name jump(std::string path, const std::string& data) {
    if (!path.empty() && path.back() == '.') path.pop_back();
    Path goal = {"root"};
    for (const std::string& part : partsOf(path)) goal.push_back(part);
    if (!world_.at(goal)) return std::nullopt;
    here_ = goal;
    remember(here_);
    tell("didJumpToStep", joined(goal) + " " + data);
    return here();
  }

  Name back() {
    if (!canBack() || !mayLeave()) return std::nullopt;
    const Name from = here();
    if (stoodOn()) {
      future_.push_back(past_.back());
      past_.pop_back();
    }
    const Name to = takePresent();
    tell("didLeaveStep", textOfName(from));
    if (to) tell("didBackToStep", *to + " nil");
    return to;
  }

  Name forward() {
    if (future_.empty() || !mayLeave()) return std::nullopt;
    past_.push_back(future_.back());
    future_.pop_back();
    return takePresent();
  }

  void clear() {
    if (past_.empty() && future_.empty()) return;
    past_.clear();
    future_.clear();
    if (here_) remember(here_);
  }

 private:
  enum Kind { kFound, kLost, kOver };
  struct Found {
    Kind kind;
    Path path;
  };

  [[nodiscard]] bool has(const std::string& operation) const {
    return delegate_ && delegate_->operations.count(operation) > 0;
  }
  void tell(const std::string& operation, const std::string& arguments) {
    if (has(operation)) calls.push_back(operation + " " + arguments);
  }
  int ask(const std::string& operation, const Name& step, int usual) {
    if (!has(operation)) return usual;
    tell(operation, textOfName(step));
    const auto& answers = delegate_->operations.at(operation);
    const auto answer = answers.find(textOfName(step));
    return answer == answers.end() ? usual : answer->second;
  }
  bool mayLeave() { return !here_ || ask("willLeaveStep", here(), 1) != 0; }
  void remember(const Place& place) {
    if (ask("historyTypeForStep", nameOfPlace(place), 0) != 0) return;
    future_.clear();
    past_.push_back(nameOfPlace(place));
  }
  Name takePresent() {
    const Name entry = past_.back();
    if (!entry) return std::nullopt;
    const Path path = partsOf(*entry);
    here_ = path.size() > 1 && world_.at(path) ? Place(path) : std::nullopt;
    return here();
  }
  [[nodiscard]] Name responseAt(const Path& path, const Name& event) const {
    const auto& responses = world_.at(path)->responses;
    const auto response = event ? responses.find(*event) : responses.end();
    return response == responses.end() ? Name() : response->second;
  }
  [[nodiscard]] Found search(const Path& path, const Name& event) const {
    const auto& targets = world_.at(path)->targets;
    if (!event || targets.count(*event) == 0) return {kOver, {}};
    const std::string& target = targets.at(*event);
    const bool leaves = target.empty();
    if (path.size() == 1) return {leaves ? kOver : kLost, {}};
    const Path parent(path.begin(), path.end() - 1);
    if (leaves) return search(parent, responseAt(path, event));
    const Place place = world_.entered(below(parent, target));
    return place ? Found{kFound, *place} : Found{kLost, {}};
  }
  Place agreed(const Found& found) {
    if (found.kind == kFound)
      return ask("shouldAdvanceToStep", joined(found.path), 1) != 0 ? found.path : here_;
    const std::string question = found.kind == kLost ? "shouldFailFromStep" : "shouldEndProcess";
    return ask(question, here(), 1) != 0 ? Place() : here_;
  }

  const World& world_;
  const RecordingDelegate* delegate_;
  Place here_;
  std::vector<Name> past_;
  std::vector<Name> future_;  // the nearest last
};

std::shared_ptr<RecordingDelegate> randomDelegate(Dice& dice, const std::vector<Path>& paths) {
  if (dice.oneIn(8)) return nullptr;
  const std::vector<int> types = {0, 1, -1, 7};
  auto delegate = std::make_shared<RecordingDelegate>();
  for (const std::string& operation : RecordingDelegate::allOperations()) {
    if (dice.oneIn(4)) continue;
    auto& answers = delegate->operations[operation];
    for (std::size_t i = dice.below(4); i > 0; --i) {
      const std::string step = dice.oneIn(5) ? "nil" : joined(dice.of(paths));
      answers[step] = operation == "historyTypeForStep" ? dice.of(types) : 0;
    }
  }
  return delegate;
}

std::string randomPath(Dice& dice, const std::vector<Path>& paths) {
  const std::string path = joined(dice.of(paths));
  const std::string inside = path == "root" ? "" : path.substr(std::string("root.").size());
  const Texts forms = {inside,        inside,       inside,           inside, inside + ".",
                       inside + "..", "." + inside, inside + ".gone", path,   ""};
  return dice.of(forms);
}

/// A process and its model, and the moves that both make.
class Pair {
 public:
  Pair(const World& world, Dice& dice)
      : dice_(dice),
        paths_(world.paths()),
        delegate_(randomDelegate(dice, paths_)),
        model_(world, delegate_.get()),
        process_(world.stepAt({"root"})) {
    process_.setDelegate(delegate_);
  }

  void move(int number) {
    const auto [took, modelTook] = both(number);
    EXPECT_EQ(took, modelTook);
    EXPECT_EQ(nameOfStep(process_.currentStep()), textOfName(model_.here()));
    EXPECT_EQ(process_.historyIndex(), model_.index());
    EXPECT_EQ(orlftest::textsOfHistory(process_), model_.history());
    EXPECT_EQ(process_.canBack(), model_.canBack());
    EXPECT_EQ(process_.canForward(), model_.canForward());
    EXPECT_EQ(process_.hasHistory(), model_.index() > 0);
    EXPECT_EQ(process_.isCurrentStepInHistory(), model_.stoodOn());
    if (!delegate_) return;
    EXPECT_EQ(std::exchange(delegate_->calls, {}), std::exchange(model_.calls, {}));
  }

 private:
  std::pair<std::string, std::string> both(int number) {
    const std::string data = std::to_string(number);
    switch (dice_.below(12)) {
      case 0:
        return {nameOfStep(process_.run()), textOfName(model_.run())};
      case 1:
      case 2:
        return {nameOfStep(process_.back()), textOfName(model_.back())};
      case 3:
      case 4:
        return {nameOfStep(process_.forward()), textOfName(model_.forward())};
      case 5: {
        const std::string path = randomPath(dice_, paths_);
        return {nameOfStep(process_.jumpToStep(path, number)), textOfName(model_.jump(path, data))};
      }
      case 6:
        return rarely();
      default: {
        const std::string event = dice_.oneIn(12) ? "unknown" : dice_.of(kEvents);
        return {nameOfStep(process_.advanceWithTransition(event, number)),
                textOfName(model_.advance(event, data))};
      }
    }
  }

  std::pair<std::string, std::string> rarely() {
    if (dice_.oneIn(2)) {
      process_.clearHistory();
      model_.clear();
      return {};
    }
    const Path path = dice_.of(paths_);
    const auto step = process_.rootStep()->childStepWithIdentifierPath(
        joined(Path(path.begin() + 1, path.end())));
    process_.setCurrentStep(step);
    model_.put(step ? Place(path) : std::nullopt);
    return {};
  }

  Dice& dice_;
  const std::vector<Path> paths_;
  const std::shared_ptr<RecordingDelegate> delegate_;
  Model model_;
  ORLFProcess process_;
};

TEST(ORLFProcess, WalksAsTheModelDoesOnRandomTrees) {
  constexpr int kTrees = 2500;
  constexpr int kMoves = 40;
  Dice dice(20240229);
  for (int tree = 0; tree < kTrees && !HasFailure(); ++tree) {
    SCOPED_TRACE("tree " + std::to_string(tree));
    const World world(dice);
    Pair pair(world, dice);
    for (int i = 0; i < kMoves && !HasFailure(); ++i) {
      SCOPED_TRACE("move " + std::to_string(i));
      pair.move(i);
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
