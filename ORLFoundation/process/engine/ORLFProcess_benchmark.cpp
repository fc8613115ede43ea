// What a move costs: transitions at a depth of four with a delegate that answers everything, ways
// out of ten nested groups, and beside them a table of full names that knows neither groups nor
// vetoes but keeps the same history.
#include <ORLFoundation/process/engine/ORLFProcess.h>
#include <benchmark/benchmark.h>

#include <map>
#include <unordered_map>

namespace ORLFoundation {
namespace {

using Step = std::shared_ptr<ORLFProcessStep>;

/// Has every operation, and counts what it is told.
class Counting final : public ORLFProcessDelegate {
 public:
  std::int64_t left = 0, reached = 0;

  std::int32_t orlfProcessHistoryTypeForStep(ORLFProcess&, const Step&) override { return 0; }
  bool orlfProcessWillLeaveStep(ORLFProcess&, const Step& step) override { return step != nullptr; }
  bool orlfProcessShouldAdvanceToStep(ORLFProcess&, const Step& step, const id&) override {
    return step != nullptr;
  }
  void orlfProcessDidLeaveStep(ORLFProcess&, const Step&) override { ++left; }
  void orlfProcessDidAdvanceToStep(ORLFProcess&, const Step&, const id&) override { ++reached; }
};

Step addedChild(const Step& parent, const std::string& name) {
  auto child = std::make_shared<ORLFProcessStep>(name);
  parent->addChildStep(child);
  if (!parent->intialStepIdentifier()) parent->setIntialStepIdentifier(name);
  return child;
}

/// So many groups in each other, in the innermost one a ring of steps.
Step ringAtDepth(int groups, int steps) {
  auto root = std::make_shared<ORLFProcessStep>("application");
  Step group = root;
  for (int i = 1; i < groups; ++i) group = addedChild(group, "section" + std::to_string(i));
  for (int i = 0; i < steps; ++i)
    addedChild(group, "page" + std::to_string(i))
        ->setSiblingIdentifier("page" + std::to_string((i + 1) % steps), "next");
  return root;
}

/// The history grows to this many entries before it is dropped.
constexpr std::int64_t kHistory = 100;

void transitions(benchmark::State& state) {
  ORLFProcess process(ringAtDepth(3, 10));
  const auto delegate = std::make_shared<Counting>();
  process.setDelegate(delegate);
  process.run();
  const id data = "data";
  for (auto _ : state) {
    benchmark::DoNotOptimize(process.advanceWithTransition("next", data));
    if (delegate->left % kHistory == 0) process.clearHistory();
  }
  const auto last = "application.section1.section2.page" + std::to_string(state.iterations() % 10);
  if (process.currentStep()->fullIdentifier() != last || delegate->reached != delegate->left)
    state.SkipWithError("wrong step");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(transitions)->Name("transitionsAtDepthFour/ours");

/// A delegate of the table, called as often.
struct Listener {
  virtual ~Listener() = default;
  virtual bool mayLeave(const std::string& step) = 0;
  virtual bool mayReach(const std::string& step) = 0;
  virtual void left(const std::string& step) = 0;
  virtual void reached(const std::string& step) = 0;
};

struct CountingListener final : Listener {
  std::int64_t count = 0;
  bool mayLeave(const std::string& step) override { return !step.empty(); }
  bool mayReach(const std::string& step) override { return !step.empty(); }
  void left(const std::string&) override { ++count; }
  void reached(const std::string&) override { ++count; }
};

void tableTransitions(benchmark::State& state) {
  std::unordered_map<std::string, std::map<std::string, std::string, std::less<>>> table;
  const std::string prefix = "application.section1.section2.page";
  for (int i = 0; i < 10; ++i)
    table[prefix + std::to_string(i)]["next"] = prefix + std::to_string((i + 1) % 10);
  CountingListener counting;
  Listener* listener = &counting;
  benchmark::DoNotOptimize(listener);
  std::string current = prefix + "0";
  std::vector<std::string> history;
  for (auto _ : state) {
    if (!listener->mayLeave(current)) continue;
    const std::string& next = table.at(current).find("next")->second;
    if (!listener->mayReach(next)) continue;
    if (history.size() == kHistory) history.clear();
    history.push_back(next);
    listener->left(current);
    current = next;
    listener->reached(current);
  }
  if (current != prefix + std::to_string(state.iterations() % 10)) state.SkipWithError("wrong");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(tableTransitions)->Name("transitionsAtDepthFour/table");

void leavingTenGroups(benchmark::State& state) {
  auto root = std::make_shared<ORLFProcessStep>("application");
  const Step first = addedChild(root, "group0");
  first->setSiblingIdentifier("group0", "out");
  Step group = first;
  for (int i = 1; i < 10; ++i) {
    group = addedChild(group, "group" + std::to_string(i));
    group->setSiblingIdentifier(NSNull(), "out");
    group->setResponse("out", "out");
  }
  const Step leaf = addedChild(group, "leaf");
  leaf->setSiblingIdentifier(NSNull(), "out");
  leaf->setResponse("out", "out");
  ORLFProcess process(root);
  const auto delegate = std::make_shared<Counting>();
  process.setDelegate(delegate);
  process.run();
  for (auto _ : state) benchmark::DoNotOptimize(process.advanceWithTransition("out", nullptr));
  if (process.currentStep() != leaf || delegate->reached != delegate->left)
    state.SkipWithError("wrong step");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(leavingTenGroups)->Name("leavingTenGroups/ours");

void copyingATree(benchmark::State& state) {
  const Step root = ringAtDepth(3, 1000);
  std::size_t count = 0;
  for (auto _ : state)
    count =
        copyOf(root)->childStepWithIdentifierPath("section1.section2")->childStepMap(false)->size();
  if (count != 1000) state.SkipWithError("wrong count");
  state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(copyingATree)->Name("copyingAThousandSteps/ours");

}  // namespace
}  // namespace ORLFoundation
