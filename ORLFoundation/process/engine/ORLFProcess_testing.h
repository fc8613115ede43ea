/// Helpers of the tests of processes: trees written as text, and a delegate that has the operations
/// that a test names and writes down its calls.
#pragma once

#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

using ORLFoundation::id;
using ORLFoundation::NSNull;
using ORLFoundation::ORLFProcess;
using ORLFoundation::ORLFProcessDelegate;
using ORLFoundation::ORLFProcessStep;

using Step = std::shared_ptr<ORLFProcessStep>;
using Texts = std::vector<std::string>;

inline std::map<std::string, std::string> attributesOfTag(const std::string& tag) {
  static const std::regex attribute(R"re((\w+)="([^"]*)")re");
  std::map<std::string, std::string> values;
  for (std::sregex_iterator match(tag.begin(), tag.end(), attribute), end; match != end; ++match)
    values[(*match)[1]] = (*match)[2];
  return values;
}

/// Reads `<step id="" firststep="">` and `<transition value="" stepid="" end="">`, without entities
/// and references; elements around them are passed over. The answer is the outermost step.
inline Step stepFromDefinition(const std::string& text) {
  static const std::regex tag(R"re(<(/?)(\w+)([^>]*?)(/?)>)re");
  Step root;
  std::vector<Step> open;
  for (std::sregex_iterator match(text.begin(), text.end(), tag), end; match != end; ++match) {
    const std::string element = (*match)[2];
    const auto values = attributesOfTag((*match)[3]);
    const bool isEndTag = (*match)[1].length() > 0;
    if (element == "step" && !isEndTag) {
      const auto step = std::make_shared<ORLFProcessStep>(values.at("id"));
      if (values.count("firststep") > 0) step->setIntialStepIdentifier(values.at("firststep"));
      if (open.empty()) {
        root = step;
      } else {
        open.back()->addChildStep(step);
      }
      open.push_back(step);
    } else if (element == "transition" && values.count("stepid") > 0) {
      open.back()->setSiblingIdentifier(values.at("stepid"), values.at("value"));
    } else if (element == "transition") {
      open.back()->setSiblingIdentifier(NSNull(), values.at("value"));
      if (values.count("end") > 0) open.back()->setResponse(values.at("end"), values.at("value"));
    }
    if (element == "step" && (isEndTag || (*match)[4].length() > 0)) open.pop_back();
  }
  if (!root || !open.empty()) throw std::runtime_error("no tree of steps: " + text);
  return root;
}

inline std::string nameOfStep(const Step& step) { return step ? step->fullIdentifier() : "nil"; }

inline std::string textOfValue(const id& value) { return value ? value.description() : "nil"; }

inline std::string textOfTransition(std::optional<std::string_view> transition) {
  return std::string(transition.value_or("nil"));
}

inline Texts textsOfHistory(const ORLFProcess& process) {
  Texts texts;
  for (const auto& entry : process.history()) texts.push_back(entry.value_or("nil"));
  return texts;
}

/// Answers by the full identifier of the step that is asked about, "nil" for none.
using DelegateAnswers = std::map<std::string, std::int32_t>;

/// Has the operations that `operations` names: the others answer as the base class does and leave
/// no trace.
class RecordingDelegate final : public ORLFProcessDelegate {
 public:
  /// By short names: "willLeaveStep", "didEndProcess" ...
  std::map<std::string, DelegateAnswers> operations;
  /// "didAdvanceToStep root.a data": an operation and its step, or the response of an end, and the
  /// data where it is told of.
  Texts calls;
  /// The other arguments of questions: "shouldEndProcess next data".
  Texts details;

  static const Texts& allOperations() {
    static const Texts names = {"historyTypeForStep", "willLeaveStep",    "shouldAdvanceToStep",
                                "shouldFailFromStep", "shouldEndProcess", "didLeaveStep",
                                "didAdvanceToStep",   "didEndProcess",    "didJumpToStep",
                                "didBackToStep"};
    return names;
  }
  void haveAllOperations() {
    for (const std::string& name : allOperations()) operations[name];
  }

  std::int32_t orlfProcessHistoryTypeForStep(ORLFProcess& process, const Step& step) override {
    if (!has("historyTypeForStep"))
      return ORLFProcessDelegate::orlfProcessHistoryTypeForStep(process, step);
    return answer("historyTypeForStep", step, 0);
  }
  bool orlfProcessWillLeaveStep(ORLFProcess& process, const Step& step) override {
    if (!has("willLeaveStep")) return ORLFProcessDelegate::orlfProcessWillLeaveStep(process, step);
    return answer("willLeaveStep", step, 1) != 0;
  }
  bool orlfProcessShouldAdvanceToStep(ORLFProcess& process, const Step& step,
                                      const id& data) override {
    if (!has("shouldAdvanceToStep"))
      return ORLFProcessDelegate::orlfProcessShouldAdvanceToStep(process, step, data);
    details.push_back("shouldAdvanceToStep " + textOfValue(data));
    return answer("shouldAdvanceToStep", step, 1) != 0;
  }
  bool orlfProcessAdvanceWithTransitionShouldFailFromStep(ORLFProcess& process,
                                                          Transition transition, const Step& step,
                                                          const id& data) override {
    if (!has("shouldFailFromStep"))
      return ORLFProcessDelegate::orlfProcessAdvanceWithTransitionShouldFailFromStep(
          process, transition, step, data);
    details.push_back("shouldFailFromStep " + textOfTransition(transition) + " " +
                      textOfValue(data));
    return answer("shouldFailFromStep", step, 1) != 0;
  }
  bool orlfProcessAdvanceWithTransitionShouldEndProcessWithData(ORLFProcess& process,
                                                                Transition transition,
                                                                const id& data) override {
    if (!has("shouldEndProcess"))
      return ORLFProcessDelegate::orlfProcessAdvanceWithTransitionShouldEndProcessWithData(
          process, transition, data);
    details.push_back("shouldEndProcess " + textOfTransition(transition) + " " + textOfValue(data));
    return answer("shouldEndProcess", process.currentStep(), 1) != 0;
  }
  void orlfProcessDidLeaveStep(ORLFProcess& process, const Step& step) override {
    ORLFProcessDelegate::orlfProcessDidLeaveStep(process, step);
    note("didLeaveStep", nameOfStep(step));
  }
  void orlfProcessDidAdvanceToStep(ORLFProcess& process, const Step& step,
                                   const id& data) override {
    ORLFProcessDelegate::orlfProcessDidAdvanceToStep(process, step, data);
    note("didAdvanceToStep", nameOfStep(step) + " " + textOfValue(data));
  }
  void orlfProcessDidEndProcessWithTransition(ORLFProcess& process, Transition response,
                                              const id& data) override {
    ORLFProcessDelegate::orlfProcessDidEndProcessWithTransition(process, response, data);
    note("didEndProcess", textOfTransition(response) + " " + textOfValue(data));
  }
  void orlfProcessDidJumpToStep(ORLFProcess& process, const Step& step, const id& data) override {
    ORLFProcessDelegate::orlfProcessDidJumpToStep(process, step, data);
    note("didJumpToStep", nameOfStep(step) + " " + textOfValue(data));
  }
  void orlfProcessDidBackToStep(ORLFProcess& process, const Step& step, const id& data) override {
    ORLFProcessDelegate::orlfProcessDidBackToStep(process, step, data);
    note("didBackToStep", nameOfStep(step) + " " + textOfValue(data));
  }

 private:
  [[nodiscard]] bool has(const std::string& operation) const {
    return operations.count(operation) > 0;
  }
  void note(const std::string& operation, const std::string& arguments) {
    if (has(operation)) calls.push_back(operation + " " + arguments);
  }
  std::int32_t answer(const std::string& operation, const Step& step, std::int32_t usual) {
    note(operation, nameOfStep(step));
    const DelegateAnswers& answers = operations.at(operation);
    const auto entry = answers.find(nameOfStep(step));
    return entry == answers.end() ? usual : entry->second;
  }
};

}  // namespace orlftest
