/// Process definitions as the tool reads them, and what they say of a step beside its transitions.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {
class ORLFProcessStep;
}  // namespace ORLFoundation

namespace orlftool {

/// What a step of such a definition represents.
class StepNote : public ORLFoundation::NSObject {
 public:
  std::optional<std::string> type;
  std::map<std::string, std::string> properties;

  [[nodiscard]] std::string className() const override { return "StepNote"; }
};

/// The note of a step, null for one that has none.
[[nodiscard]] std::shared_ptr<StepNote> noteOf(const ORLFoundation::ORLFProcessStep& step);

/// The process of a definition, from standard input for "-". Rules that are broken are logged.
/// Throws JobFailure for a file that cannot be read and for one of which no process can be made.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFProcessStep> readProcessFile(
    const std::string& path);

}  // namespace orlftool
