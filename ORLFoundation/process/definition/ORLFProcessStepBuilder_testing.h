/// Helpers of the tests of process definitions.
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderDelegate.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlftest {

using Steps = std::shared_ptr<ORLFoundation::ORLFProcessStep>;

/// Gives every step a list of what it was asked with, and keeps these lists.
class RecordingMaker final : public ORLFoundation::ORLFProcessStepBuilderDelegate {
 public:
  struct Call {
    std::string step;
    std::optional<std::string> type;
    std::shared_ptr<ORLFoundation::NSMutableDictionary> data;
    std::size_t transitions = 0;
    bool hasParent = false;
  };
  std::vector<Call> calls;

  ORLFoundation::id processStepBuilderRepresentedObjectForStep(
      ORLFoundation::ORLFProcessStepBuilder&, const Steps& step,
      const std::optional<std::string>& withType,
      const std::shared_ptr<ORLFoundation::NSMutableDictionary>& data) override {
    const auto names = step->possibleTransitions();
    calls.push_back({step->identifier(), withType, data, names ? names->size() : 0,
                     step->parentStep() != nullptr});
    return static_cast<int>(calls.size());
  }
  /// "s:page", in the order of the calls.
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> texts;
    for (const Call& call : calls) texts.push_back(call.step + ":" + call.type.value_or("nil"));
    return texts;
  }
};

/// A builder with a recording delegate, and the lines that reading logs.
struct Reading {
  Reading() { builder.setDelegate(maker); }

  Steps read(const std::string& definition) {
    const TemporaryFolder folder;
    return builder.readStepFromURL(
        ORLFoundation::NSURL::fileURLWithPath(folder.write("definition.xml", definition)), &error);
  }
  /// The reason of the exception that reading raises; "" when it raises none.
  std::string reasonOfReading(const std::string& definition) {
    try {
      static_cast<void>(read(definition));
    } catch (const ORLFoundation::NSException& exception) {
      name = exception.name();
      return exception.reason();
    }
    return {};
  }

  const std::shared_ptr<RecordingMaker> maker = std::make_shared<RecordingMaker>();
  ORLFoundation::LogCapture log;
  ORLFoundation::ORLFProcessStepBuilder builder;
  std::shared_ptr<const ORLFoundation::NSError> error;
  std::string name;
};

}  // namespace orlftest
