#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::nameOfStep;
using orlftest::RecordingDelegate;

std::string textOfJson(const Json& value) {
  if (value.is_null()) return "nil";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

id dataFromJson(const Json& value) {
  if (value.is_null()) return nullptr;
  return value.is_string() ? id(value.get<std::string>()) : id(value.get<std::int64_t>());
}

std::shared_ptr<RecordingDelegate> delegateFromJson(const Json& operations) {
  auto delegate = std::make_shared<RecordingDelegate>();
  for (const auto& [operation, answers] : operations.items()) {
    auto& taken = delegate->operations[operation];
    for (const auto& [step, answer] : answers.items())
      taken[step] = answer.is_boolean() ? static_cast<int>(answer.get<bool>()) : answer.get<int>();
  }
  return delegate;
}

std::string runStep(ORLFProcess& process, const Json& step) {
  const auto name = step.at(0).get<std::string>();
  if (name == "run") return nameOfStep(process.run());
  if (name == "advance")
    return nameOfStep(
        process.advanceWithTransition(step.at(1).get<std::string>(), dataFromJson(step.at(2))));
  if (name == "jump")
    return nameOfStep(process.jumpToStep(step.at(1).get<std::string>(), dataFromJson(step.at(2))));
  if (name == "back") return nameOfStep(process.back());
  if (name == "forward") return nameOfStep(process.forward());
  if (name != "clear") throw std::runtime_error("unknown step " + name);
  process.clearHistory();
  return "nil";
}

Json linesOfCalls(const Json& calls) {
  Json lines = Json::array();
  for (const Json& call : calls) {
    std::string line;
    for (const Json& part : call) line += (line.empty() ? "" : " ") + textOfJson(part);
    lines.push_back(line);
  }
  return lines;
}

Json expectedState(const Json& row) {
  Json history = Json::array();
  for (const Json& entry : row.at("history")) history.push_back(textOfJson(entry));
  return {{"result", textOfJson(row.at("result"))},
          {"current", textOfJson(row.at("current"))},
          {"historyIndex", row.at("historyIndex")},
          {"history", history},
          {"canBack", row.at("canBack")},
          {"canForward", row.at("canForward")},
          {"delegate", linesOfCalls(row.at("delegate"))}};
}

Json state(const ORLFProcess& process, const std::string& result, RecordingDelegate& delegate) {
  return {{"result", result},
          {"current", nameOfStep(process.currentStep())},
          {"historyIndex", process.historyIndex()},
          {"history", orlftest::textsOfHistory(process)},
          {"canBack", process.canBack()},
          {"canForward", process.canForward()},
          {"delegate", std::exchange(delegate.calls, {})}};
}

std::string walk(const Json& in, const Json& out) {
  ORLFProcess process(orlftest::stepFromDefinition(in.at("definition").get<std::string>()));
  const auto delegate = delegateFromJson(in.at("delegate"));
  process.setDelegate(delegate);
  const Json& steps = in.at("steps");
  if (steps.size() != out.size()) return "as many states as steps are expected";
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const std::string result = runStep(process, steps[i]);
    const auto text = disagreement(expectedState(out[i]), state(process, result, *delegate));
    if (!text.empty()) return "step " + std::to_string(i) + ": " + text;
  }
  return {};
}

TEST(ORLFProcess, AgreesWithVectorsOfWalks) {
  orlftest::runJsonVectors("process_walk", {{"walk", walk}});
}

}  // namespace
}  // namespace ORLFoundation
