/// Which records a step was made of.
#pragma once

#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace ORLFoundation::internal::definition {

/// The records in the order in which they filled a step: the one that stands in the step's place is
/// the last, a reference behind its target.
using StepOrigins =
    std::unordered_map<const ORLFProcessStep*,
                       std::vector<std::shared_ptr<ORLFProcessStepBuilderStepData>>>;

}  // namespace ORLFoundation::internal::definition
