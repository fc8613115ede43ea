#include "process/process_graph.h"

#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "io/atomic_file.h"
#include "io/child_program.h"
#include "process/process_file.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Step = std::shared_ptr<ORLFProcessStep>;

constexpr std::string_view kHead =
    "  rankdir=LR;\n"
    "  node [shape=box, style=rounded, fontname=\"sans-serif\"];\n"
    "  edge [fontname=\"sans-serif\", fontsize=10];\n"
    "  graph [fontname=\"sans-serif\", style=rounded, color=gray];\n";

class Drawing {
 public:
  explicit Drawing(const Step& root) : root_(root), process_(root) {}

  std::string text() {
    text_ = "digraph " + dotLabel(root_->identifier()) + " {\n";
    text_ += kHead;
    addSteps();
    addStart();
    for (const Step& step : places_) addTransitions(step);
    for (const auto& [outcome, name] : ends_)
      text_ += "  " + name + " [label=" + dotLabel(outcome) + ", shape=doublecircle];\n";
    if (hasNowhere_) text_ += "  nowhere [label=\"?\", color=red];\n";
    return text_ + "}\n";
  }

 private:
  /// Depth first, on a list of its own: null closes the frame of a group.
  void addSteps() {
    std::vector<Step> open = {root_};
    std::size_t depth = 1;
    while (!open.empty()) {
      const Step step = std::move(open.back());
      open.pop_back();
      if (!step) {
        text_ += indentOf(--depth) + "}\n";
        continue;
      }
      const std::string name = nameOf(step);
      const std::string indent = indentOf(depth);
      if (!step->intialStepIdentifier()) {
        text_ += indent + name + " [label=" + labelOf(*step) + "];\n";
        places_.push_back(step);
      }
      if (!isGroup(*step)) continue;
      text_.append(indent).append("subgraph cluster_").append(name).append(" {\n");
      text_.append(indent).append("  label=").append(labelOf(*step)).append(";\n");
      ++depth;
      open.push_back(nullptr);
      const auto& children = *step->childStepMap(false);
      std::for_each(children.rbegin(), children.rend(),
                    [&](const auto& entry) { open.push_back(entry.second); });
    }
  }
  void addStart() {
    text_ += "  start [shape=point];\n  start -> " + placeOf(root_->initialStep()) + ";\n";
  }
  void addTransitions(const Step& step) {
    for (const std::string& name : step->possibleTransitions().value_or(std::vector<std::string>()))
      text_ += "  " + nameOf(step) + " -> " + targetOf(step, name) + " [label=" + dotLabel(name) +
               "];\n";
  }
  std::string targetOf(const Step& step, const std::string& transition) {
    constexpr std::int32_t kEnded = 2;
    std::int32_t result = 1;
    const Step target = process_.advanceFromStep(step, transition, nullptr, result);
    if (result != kEnded) return placeOf(target);
    const std::string outcome = step->responseForTransition(transition).value_or("end");
    return ends_.emplace(outcome, "end" + std::to_string(ends_.size())).first->second;
  }
  std::string placeOf(const Step& step) {
    if (step) return nameOf(step);
    hasNowhere_ = true;
    return "nowhere";
  }
  std::string nameOf(const Step& step) {
    const std::size_t next = numbers_.size();
    return "s" + std::to_string(numbers_.emplace(step.get(), next).first->second);
  }
  /// Deep ones stand below each other, or the blanks would outgrow the graph.
  static std::string indentOf(std::size_t depth) {
    constexpr std::size_t kDeepest = 20;
    return std::string(2 * std::min(depth, kDeepest), ' ');
  }
  static bool isGroup(ORLFProcessStep& step) {
    const auto* const children = step.childStepMap(false);
    return children != nullptr && !children->empty();
  }
  static std::string labelOf(const ORLFProcessStep& step) {
    const auto note = noteOf(step);
    const bool hasType = note && !note->type.value_or("").empty();
    return dotLabel(step.identifier() + (hasType ? "\n" + *note->type : ""));
  }

  const Step root_;
  ORLFProcess process_;
  std::string text_;
  std::unordered_map<const ORLFProcessStep*, std::size_t> numbers_;
  std::vector<Step> places_;
  std::map<std::string, std::string> ends_;
  bool hasNowhere_ = false;
};

}  // namespace

// A backslash begins an escape, and "&" an entity of HTML, even in quotes.
std::string dotLabel(std::string_view text) {
  std::string label = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
        label += R"(\")";
        break;
      case '\\':
        label += R"(\\)";
        break;
      case '&':
        label += "&amp;";
        break;
      case '\n':
        label += R"(\n)";
        break;
      default:
        label += static_cast<unsigned char>(c) < ' ' || c == '\x7F' ? ' ' : c;
    }
  }
  return label + '"';
}

std::string dotOfProcess(const Step& root) { return Drawing(root).text(); }

void drawSvg(const std::string& dot, const std::string& path) {
  writeFileAtomically(path, [&](const std::string& temporaryPath) {
    const ChildRun run = runProgram({"dot", "-Tsvg", "-o" + temporaryPath}, dot);
    if (!run.isFound)
      throw JobFailure(path +
                       ": an SVG needs the program dot of Graphviz, which is not installed; "
                       "a .dot file needs nothing");
    if (run.exitCode != 0)
      throw JobFailure(path +
                       ": dot failed: " + oneLine(run.errors.substr(0, run.errors.find('\n'))));
  });
}

}  // namespace orlftool
