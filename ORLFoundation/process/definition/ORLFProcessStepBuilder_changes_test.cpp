// Delegates that do more than answer, and records that no file could have given.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderDelegate.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <functional>
#include <stdexcept>

namespace ORLFoundation {
namespace {

using orlftest::Reading;
using orlftest::TemporaryFolder;

/// Calls a block with the builder and the step.
class Meddling final : public ORLFProcessStepBuilderDelegate {
 public:
  using Block = std::function<void(ORLFProcessStepBuilder&, const std::string&)>;
  explicit Meddling(Block block) : block_(std::move(block)) {}

  id processStepBuilderRepresentedObjectForStep(
      ORLFProcessStepBuilder& builder, const std::shared_ptr<ORLFProcessStep>& step,
      const std::optional<std::string>&, const std::shared_ptr<NSMutableDictionary>&) override {
    block_(builder, step->identifier());
    return nullptr;
  }

 private:
  Block block_;
};

const char* const kTwoGroups =
    "<process rootstep='r'><step id='a'/><step id='r' firststep='g'><step id='g' firststep='s'>"
    "<stepref id='s'/></step></step><step id='s' firststep='t'><step id='t'/></step></process>";

TEST(ORLFProcessStepBuilderChanges, ADelegateMayLetGoOfTheBuilder) {
  const TemporaryFolder folder;
  const NSURL url = NSURL::fileURLWithPath(folder.write("d.xml", kTwoGroups));
  auto builder = std::make_shared<ORLFProcessStepBuilder>();
  const std::weak_ptr<ORLFProcessStepBuilder> seen = builder;
  int calls = 0;
  const auto delegate = std::make_shared<Meddling>([&](ORLFProcessStepBuilder&, const auto&) {
    builder.reset();
    ++calls;
  });
  builder->setDelegate(delegate);
  const auto root = builder->readStepFromURL(url);
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->initialStep()->fullIdentifier(), "r.g.s.t");
  EXPECT_EQ(calls, 7);
  EXPECT_TRUE(seen.expired());
}

TEST(ORLFProcessStepBuilderChanges, ADelegateMayAskForOtherSteps) {
  Reading reading;
  std::shared_ptr<ORLFProcessStep> inTheMiddle;
  const auto delegate = std::make_shared<Meddling>([&](ORLFProcessStepBuilder& builder,
                                                       const std::string& name) {
    if (name != "g") return;
    EXPECT_NE(builder.rootStepInstanceWithIdentifier("s")->childStepWithIdentifier("t"), nullptr);
    inTheMiddle = builder.rootStepInstanceWithIdentifier("r");
  });
  reading.builder.setDelegate(delegate);
  const auto root = reading.read(kTwoGroups);
  EXPECT_EQ(inTheMiddle, root) << "the one that is being made";
  EXPECT_NE(root->childStepWithIdentifierPath("g.s.t"), nullptr);
}

TEST(ORLFProcessStepBuilderChanges, ADelegateMayReadAnotherFile) {
  const TemporaryFolder folder;
  const NSURL other = NSURL::fileURLWithPath(
      folder.write("o.xml", "<process rootstep='o'><step id='o'/></process>"));
  Reading reading;
  bool isRead = false;
  const auto delegate =
      std::make_shared<Meddling>([&](ORLFProcessStepBuilder& builder, const std::string&) {
        if (std::exchange(isRead, true)) return;
        EXPECT_EQ(builder.readStepFromURL(other)->identifier(), "o");
      });
  reading.builder.setDelegate(delegate);
  EXPECT_EQ(reading.read(kTwoGroups)->identifier(), "o") << "the last file's name counts";
  EXPECT_EQ(reading.builder.rootStepInstances().size(), 4U);
}

TEST(ORLFProcessStepBuilderChanges, RecordsThatADelegateMakesEndlessRaise) {
  Reading reading;
  reading.builder.setStepLimit(1000);
  const auto delegate =
      std::make_shared<Meddling>([](ORLFProcessStepBuilder& builder, const std::string& name) {
        if (name != "s") return;
        const auto reference = std::make_shared<ORLFProcessStepBuilderStepData>();
        reference->setReference(true);
        reference->setIdentifier("s");
        builder.rootStepDatas().at("s")->childSteps() = {reference};
      });
  reading.builder.setDelegate(delegate);
  const std::string reason = reading.reasonOfReading(kTwoGroups);
  EXPECT_EQ(reason, "A definition came to more than 1000 steps while they were made, at s");
  EXPECT_EQ(reading.name, NSGenericException);
}

TEST(ORLFProcessStepBuilderChanges, WhatIsThrownLeavesABuilderThatCanBeUsed) {
  Reading reading;
  const auto throwing = std::make_shared<Meddling>([](ORLFProcessStepBuilder&, const auto& name) {
    if (name == "s") throw std::runtime_error("no page");
  });
  reading.builder.setDelegate(throwing);
  EXPECT_THROW(static_cast<void>(reading.read(kTwoGroups)), std::runtime_error);
  EXPECT_EQ(reading.builder.currentStepData(), nullptr);
  reading.builder.setDelegate(nullptr);
  EXPECT_NE(reading.read("<process rootstep='z'><step id='z'/></process>"), nullptr);
}

TEST(ORLFProcessStepBuilderChanges, AFileLeftInTheMiddleLeavesNoRecordForTheNext) {
  for (const char* broken : {"<process rootstep='r'><step id='r' firststep='s'>",
                             "<process rootstep='r'><step id='r'><transition/></step></process>"}) {
    Reading reading;
    static_cast<void>(reading.reasonOfReading(broken));
    EXPECT_NE(reading.builder.currentStepData(), nullptr) << broken;
    const auto root = reading.read("<process rootstep='z'><step id='z'/></process>");
    ASSERT_NE(root, nullptr) << broken;
    EXPECT_EQ(root->identifier(), "z");
    EXPECT_EQ(reading.builder.currentStepData(), nullptr);
  }
}

TEST(ORLFProcessStepBuilderChanges, ADelegateMayBeGone) {
  Reading reading;
  auto delegate = std::make_shared<Meddling>([&](ORLFProcessStepBuilder&, const auto&) {});
  const std::weak_ptr<Meddling> seen = delegate;
  reading.builder.setDelegate(delegate);
  delegate.reset();
  EXPECT_TRUE(seen.expired()) << "it is not held";
  EXPECT_EQ(reading.builder.delegate(), nullptr);
  EXPECT_NE(reading.read(kTwoGroups), nullptr);
}

std::shared_ptr<ORLFProcessStepBuilderStepData> recordNamed(const std::string& name) {
  auto record = std::make_shared<ORLFProcessStepBuilderStepData>();
  record->setIdentifier(name);
  return record;
}

TEST(ORLFProcessStepBuilderChanges, RecordsThatAreMissingRaise) {
  Reading reading;
  const auto group = recordNamed("g");
  group->childSteps().push_back(nullptr);
  reading.builder.rootStepDatas()["g"] = group;
  reading.builder.rootStepDatas()["none"] = nullptr;
  EXPECT_THROW(reading.builder.rootStepInstanceWithIdentifier("g"), NSException);
  EXPECT_NE(reading.builder.rootStepInstanceWithIdentifier("none"), nullptr);
  const auto reference = recordNamed("none");
  reference->setReference(true);
  group->childSteps() = {reference};
  const auto step = std::make_shared<ORLFProcessStep>("x");
  EXPECT_THROW(reading.builder.fillStepWithData(step, group), NSException);
  EXPECT_THROW(reading.builder.fillStepWithData(nullptr, group), NSException);
  reading.builder.fillStepWithData(step, nullptr);
  EXPECT_EQ(step->childStepMap(false), nullptr);
}

TEST(ORLFProcessStepBuilderChanges, ARecordThatHoldsItselfRaises) {
  Reading reading;
  reading.builder.setStepLimit(100);
  const auto group = recordNamed("g");
  group->childSteps().push_back(group);
  const auto step = std::make_shared<ORLFProcessStep>("g");
  EXPECT_THROW(reading.builder.fillStepWithData(step, group), NSException);
  EXPECT_EQ(step->childStepMap(false), nullptr) << "before anything is made";
  group->childSteps().clear();
}

TEST(ORLFProcessStepBuilderChanges, FillingAStepCountsWhatItMakes) {
  Reading reading;
  reading.builder.setStepLimit(3);
  const auto group = recordNamed("g");
  group->childSteps() = {recordNamed("a"), recordNamed("b")};
  const auto step = std::make_shared<ORLFProcessStep>("g");
  reading.builder.fillStepWithData(step, group);
  EXPECT_EQ(step->childStepMap(false)->size(), 2U);
  EXPECT_THROW(reading.builder.fillStepWithData(step, group), NSException);
}

/// A derived builder that has a say in every step and value.
class Derived final : public ORLFProcessStepBuilder {
 public:
  std::vector<std::string> filled;
  std::vector<std::string> broken;

  void fillStepWithTransitionsFromData(const Step& step, const StepData& data) override {
    filled.push_back(step->identifier());
    ORLFProcessStepBuilder::fillStepWithTransitionsFromData(step, data);
  }
  id readPropertyValueFromAttributes(const NSDictionary&) override { return "mine"; }

 protected:
  void ruleIsBroken(NSXMLParser&, std::string_view condition, std::string_view message) override {
    broken.push_back(std::string(condition) + "|" + std::string(message));
  }
};

TEST(ORLFProcessStepBuilderChanges, ADerivedBuilderIsAskedForWhatItOverrides) {
  const TemporaryFolder folder;
  const LogCapture log;
  Derived builder;
  const auto maker = std::make_shared<orlftest::RecordingMaker>();
  builder.setDelegate(maker);
  EXPECT_NE(builder.readStepFromURL(NSURL::fileURLWithPath(
                folder.write("d.xml",
                             "<process rootstep='r'><step id='r' firststep='s'><property key='k' "
                             "int='1'/><stepref id='s'/></step><step id='s'/><stepref id='s'/>"
                             "</process>"))),
            nullptr);
  EXPECT_EQ(builder.filled, (std::vector<std::string>{"r", "s", "s", "s"}));
  EXPECT_EQ(maker->calls[0].data->objectForKey("k"), id("mine"));
  EXPECT_EQ(builder.broken, std::vector<std::string>{"self.currentStepData != nil|The <stepref> "
                                                     "element should never be at the root"});
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace ORLFoundation
