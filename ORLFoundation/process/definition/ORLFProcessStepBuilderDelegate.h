/// Gives the steps of a process definition their meaning.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class NSMutableDictionary;
class ORLFProcessStep;
class ORLFProcessStepBuilder;

class ORLFProcessStepBuilderDelegate : public NSObject {
 public:
  /// `processStepBuilder:representedObjectForStep:withType:data:`  The object of a step that has
  /// its identifier, its transitions and responses, and as yet neither parent nor children. Type
  /// and properties are those of the definition; the type is nil where it names none. The
  /// properties are shared by all steps that are made of one record.
  [[nodiscard]] virtual id processStepBuilderRepresentedObjectForStep(
      ORLFProcessStepBuilder& builder, const std::shared_ptr<ORLFProcessStep>& step,
      const std::optional<std::string>& withType,
      const std::shared_ptr<NSMutableDictionary>& data) = 0;
};

}  // namespace ORLFoundation
