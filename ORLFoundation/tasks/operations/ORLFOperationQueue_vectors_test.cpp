#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/tasks/operations/ORLFOperationQueue_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::Json;

Json attachedState(const NSOperation& operation) {
  const id group = operation.attachedValue(ORLFOperationGroupIDKey);
  const id barrier = operation.attachedValue(ORLFOperationBarrierKey);
  return {{"ORLFOperationGroupIDKey", orlftest::jsonOrNull(group.as<std::string>())},
          {"ORLFOperationBarrierKey", orlftest::jsonOrNull(barrier.as<bool>())},
          {"orlfGroupID", orlftest::jsonOrNull(orlfGroupID(operation))},
          {"orlfIsBarrierOperation", orlfIsBarrierOperation(operation)}};
}

std::string playAttached(const Json& in, const Json& out) {
  NSOperation operation;
  Json states = Json::array({attachedState(operation)});
  for (const Json& step : in.at("steps")) {
    if (step[0] == "orlfSetGroupID:") {
      orlfSetGroupID(operation, orlftest::textOrNil(step[1]));
    } else if (step[0] == "orlfSetIsBarrierOperation:") {
      orlfSetIsBarrierOperation(operation, step[1]);
    } else {
      throw std::runtime_error("unknown step");
    }
    states.push_back(attachedState(operation));
  }
  return orlftest::disagreement(out, states);
}

std::string playOperations(const Json& in, const Json& out) {
  return orlftest::OperationPlayer::playScript(in, out);
}

TEST(ORLFOperationQueue, AgreesWithVectors) {
  orlftest::runJsonVectors("queue_operations",
                           {{"attached", playAttached}, {"operations", playOperations}});
}

}  // namespace
}  // namespace ORLFoundation
