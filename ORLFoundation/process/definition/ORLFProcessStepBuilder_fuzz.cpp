#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/ORLFProcessDefinitionCheck.h>
#include <ORLFoundation/process/engine/ORLFProcess.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace ORLFoundation;

namespace {

constexpr NSUInteger kMostSteps = 10'000;

std::size_t countOfTree(ORLFProcessStep& step) {
  std::size_t count = 1;
  if (step.childStepMap(false))
    for (const auto& entry : *step.childStepMap(false)) count += countOfTree(*entry.second);
  return count;
}

}  // namespace

// Whatever is read is a tree within the bound, and can be walked. A definition in which nothing is
// wrong is read in silence, and has a step to begin with.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static bool isSilent;
  isSilent = true;
  NSSetLogSink([](std::string_view) { isSilent = false; });
  const NSData definition(std::string_view(reinterpret_cast<const char*>(data), size));
  const auto builder = std::make_shared<ORLFProcessStepBuilder>();
  builder->setStepLimit(kMostSteps);
  NSXMLParser parser(definition);
  parser.setDelegate(builder);
  bool isRead = false;
  try {
    isRead = parser.parse();
  } catch (const NSException&) {
  }
  const bool isInOrder =
      isRead && isSilent && builder->rootStepId() &&
      builder->rootStepInstanceWithIdentifier(*builder->rootStepId())->initialStep() != nullptr;
  if (ORLFProcessDefinitionCheck::findingsOfData(definition, kMostSteps).empty() && !isInOrder)
    std::abort();
  std::size_t count = 0;
  for (const auto& entry : builder->rootStepInstances()) {
    count += countOfTree(*entry.second);
    ORLFProcess process(entry.second);
    for (int i = 0; i < 8 && process.run(); ++i) {
      const auto names = process.currentStep()->possibleTransitions();
      process.advanceWithTransition(names && !names->empty() ? names->front() : "x", nullptr);
      process.back();
    }
  }
  if (count > kMostSteps) std::abort();
  return 0;
}
