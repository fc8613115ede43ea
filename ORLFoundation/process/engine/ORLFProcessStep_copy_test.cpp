#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/process/engine/ORLFProcess.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::stepFromDefinition;

const std::string kForm = R"(
  <step id="root" firststep="g">
    <step id="g" firststep="c">
      <transition value="finish" stepid="h"/>
      <step id="c"><transition value="done" end="finish"/></step>
      <step id="d"/>
    </step>
    <step id="h"/>
  </step>)";

/// A step with something more to carry over, and a child that it always makes for itself.
class Page : public ORLFProcessStep {
 public:
  Page(const std::string& identifier, int number) : ORLFProcessStep(identifier), number_(number) {}
  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] std::string className() const override { return "Page"; }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    auto page = std::make_shared<Page>("made by the hook", number_);
    page->addChildStep(std::make_shared<ORLFProcessStep>("extra"));
    page->setResponse("extra", "extra");
    page->setSiblingIdentifier("extra", "extra");
    page->setRepresentedObject("extra");
    return page;
  }

 private:
  int number_;
};

/// Leaves the hook to its base class.
class Forgetful : public ORLFProcessStep {
  using ORLFProcessStep::ORLFProcessStep;
};

void expectNoRepresentedObject(ORLFProcessStep& step) {
  EXPECT_TRUE(step.representedObject().isNil()) << step.fullIdentifier();
  if (!step.childStepMap(false)) return;
  for (const auto& entry : *step.childStepMap(false)) expectNoRepresentedObject(*entry.second);
}

TEST(ORLFProcessStep, ACopyIsAWholeTreeOfItsOwn) {
  const auto root = stepFromDefinition(kForm);
  const auto copy = copyOf(root);
  ASSERT_NE(copy, root);
  EXPECT_EQ(copy->identifier(), "root");
  EXPECT_EQ(copy->intialStepIdentifier(), "g");
  EXPECT_EQ(copy->initialStep()->fullIdentifier(), "root.g.c");
  for (const char* path : {"g", "g.c", "g.d", "h"}) {
    const auto step = copy->childStepWithIdentifierPath(path);
    ASSERT_NE(step, nullptr) << path;
    EXPECT_NE(step, root->childStepWithIdentifierPath(path)) << path;
    EXPECT_EQ(step->fullIdentifier(), std::string("root.") + path);
  }
  const auto leaf = copy->childStepWithIdentifierPath("g.c");
  EXPECT_TRUE(leaf->siblingIdentiferForTransition("done").isNull());
  EXPECT_EQ(leaf->responseForTransition("done"), "finish");
  EXPECT_EQ(leaf->parentStep(), copy->childStepWithIdentifier("g"));
  EXPECT_EQ(leaf->parentStep()->parentStep(), copy);
}

TEST(ORLFProcessStep, ACopyHasNoParentAndNoRepresentedObject) {
  const auto root = stepFromDefinition(kForm);
  const auto group = root->childStepWithIdentifier("g");
  root->setRepresentedObject("r");
  group->setRepresentedObject("g");
  group->childStepWithIdentifier("c")->setRepresentedObject("c");
  const auto copy = copyOf(group);
  EXPECT_EQ(copy->parentStep(), nullptr);
  EXPECT_EQ(copy->fullIdentifier(), "g");
  expectNoRepresentedObject(*copy);
  expectNoRepresentedObject(*copyOf(root));
  EXPECT_EQ(group->representedObject(), id("g"));
  EXPECT_EQ(group->parentStep(), root);
}

TEST(ORLFProcessStep, ACopyHasMapsWhereTheOriginalHasThem) {
  const auto step = std::make_shared<ORLFProcessStep>("a");
  const auto bare = copyOf(step);
  EXPECT_EQ(bare->transitionMapCreate(false), nullptr);
  EXPECT_EQ(bare->responseMapCreate(false), nullptr);
  EXPECT_EQ(bare->childStepMap(false), nullptr);
  EXPECT_EQ(bare->intialStepIdentifier(), std::nullopt);
  step->setSiblingIdentifier("b", "next");
  step->setResponse("r", "next");
  const auto copy = copyOf(step);
  copy->setSiblingIdentifier("c", "next");
  copy->setResponse("s", "next");
  EXPECT_EQ(step->siblingIdentiferForTransition("next"), id("b"));
  EXPECT_EQ(step->responseForTransition("next"), "r");
  step->transitionMapCreate(false)->clear();
  EXPECT_EQ(copyOf(step)->possibleTransitions(), orlftest::Texts{});
}

TEST(ORLFProcessStep, CopiesKeepTheClassesOfTheirSteps) {
  const auto root = stepFromDefinition(kForm);
  const auto page = std::make_shared<Page>("page", 7);
  page->addChildStep(std::make_shared<Page>("below", 8));
  root->addChildStep(page);
  const auto copy = copyOf(root);
  const auto twin = std::dynamic_pointer_cast<Page>(copy->childStepWithIdentifier("page"));
  ASSERT_NE(twin, nullptr);
  EXPECT_EQ(twin->number(), 7);
  EXPECT_EQ(twin->childStepMap(false)->size(), 1U);
  EXPECT_EQ(twin->responseMapCreate(false), nullptr);
  EXPECT_EQ(twin->transitionMapCreate(false), nullptr);
  const auto below = std::dynamic_pointer_cast<Page>(twin->childStepWithIdentifier("below"));
  ASSERT_NE(below, nullptr);
  EXPECT_EQ(below->number(), 8);
  EXPECT_EQ(below->childStepMap(false), nullptr);
  expectNoRepresentedObject(*copy);
}

TEST(ORLFProcessStep, ACopyNeverLosesAClassInSilence) {
  const auto root = stepFromDefinition(kForm);
  root->addChildStep(std::make_shared<Forgetful>("x"));
  EXPECT_THROW(static_cast<void>(root->copy()), NSException);
}

constexpr int kDepth = 100'000;

/// Groups in groups, each with a way out that its parent takes by the same name.
std::shared_ptr<ORLFProcessStep> deepTree() {
  auto root = std::make_shared<ORLFProcessStep>("s");
  auto step = root;
  for (int i = 1; i < kDepth; ++i) {
    const auto child = std::make_shared<ORLFProcessStep>("s");
    step->setIntialStepIdentifier("s");
    step->addChildStep(child);
    child->setSiblingIdentifier(NSNull(), "out");
    child->setResponse("out", "out");
    step = child;
  }
  return root;
}

TEST(ORLFProcessStep, ATreeOfAnyDepthIsWalkedCopiedAndDestroyed) {
  auto root = deepTree();
  const auto copy = copyOf(root);
  std::weak_ptr<ORLFProcessStep> deepest = root->initialStep();
  ASSERT_EQ(deepest.lock()->fullIdentifier().size(), 2U * kDepth - 1);
  root.reset();
  EXPECT_TRUE(deepest.expired());

  ORLFProcess process(copy);
  const auto leaf = process.run();
  ASSERT_EQ(leaf->fullIdentifier().size(), 2U * kDepth - 1);
  EXPECT_EQ(copy->childStepWithIdentifierPath(leaf->fullIdentifier().substr(2)), leaf);
  EXPECT_TRUE(process.isCurrentStepInHistory());
  // Through every group to the root, which has no way out by that name.
  EXPECT_EQ(process.advanceWithTransition("out", nullptr), nullptr);
  EXPECT_EQ(orlftest::textsOfHistory(process).back(), "nil");
  EXPECT_EQ(process.run(), leaf);
  copy->setSiblingIdentifier("x", "out");
  EXPECT_EQ(process.advanceWithTransition("out", nullptr), nullptr);
}

TEST(ORLFProcessStep, ADeepTreeIsBuiltFromBelowToo) {
  auto top = std::make_shared<ORLFProcessStep>("s");
  for (int i = 1; i < kDepth; ++i) {
    const auto parent = std::make_shared<ORLFProcessStep>("s");
    parent->addChildStep(top);
    top = parent;
  }
  std::size_t depth = 0;
  for (auto step = top; step; step = step->childStepWithIdentifier("s")) ++depth;
  EXPECT_EQ(depth, std::size_t{kDepth});
}

TEST(ORLFProcessStep, AHeldStepKeepsItsOwnTreeWhenItsParentGoes) {
  auto root = stepFromDefinition(kForm);
  const auto group = root->childStepWithIdentifier("g");
  const std::weak_ptr<ORLFProcessStep> other = root->childStepWithIdentifier("h");
  root.reset();
  EXPECT_TRUE(other.expired());
  EXPECT_NE(group->childStepWithIdentifier("c"), nullptr);
  EXPECT_NE(group->childStepWithIdentifier("d"), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
