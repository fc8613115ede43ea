#include "process/process_file.h"

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderDelegate.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <string_view>

#include "cli/failure.h"
#include "io/input_file.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

std::string textOfValue(const id& value) {
  const NSNumber* const number = value.get<NSNumber>();
  if (number == nullptr || number->kind() != NSNumber::Kind::Boolean) return value.description();
  return number->boolValue() ? "yes" : "no";
}

class NoteMaker final : public ORLFProcessStepBuilderDelegate {
 public:
  id processStepBuilderRepresentedObjectForStep(
      ORLFProcessStepBuilder& /*builder*/, const std::shared_ptr<ORLFProcessStep>& /*step*/,
      const std::optional<std::string>& withType,
      const std::shared_ptr<NSMutableDictionary>& data) override {
    auto note = std::make_shared<StepNote>();
    note->type = withType;
    for (const auto& [key, value] : data->entries())
      note->properties[key.description()] = textOfValue(value);
    return note;
  }
};

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
  throw JobFailure((path == "-" ? "standard input" : path) + ": no process can be made: " + reason +
                   " (orlf process check tells more)");
}

}  // namespace

std::shared_ptr<StepNote> noteOf(const ORLFProcessStep& step) {
  return step.representedObject().as<StepNote>();
}

std::shared_ptr<ORLFProcessStep> readProcessFile(const std::string& path) {
  const std::string definition = readInputFile(path, "a process definition");
  const auto builder = std::make_shared<ORLFProcessStepBuilder>();
  const auto maker = std::make_shared<NoteMaker>();
  builder->setDelegate(maker);
  NSXMLParser parser{NSData(std::string_view(definition))};
  parser.setDelegate(builder);
  try {
    if (!parser.parse()) fail(path, parser.parserError()->localizedDescription());
  } catch (const NSException& exception) {
    fail(path, exception.reason());
  }
  const auto& steps = builder->rootStepInstances();
  const auto root = builder->rootStepId() ? steps.find(*builder->rootStepId()) : steps.end();
  if (root == steps.end()) fail(path, "its <process> names no step at the top of the file");
  return root->second;
}

}  // namespace orlftool
