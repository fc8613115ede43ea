/// Processes as graphs in the DOT language, and as pictures by the program `dot` of Graphviz.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {
class ORLFProcessStep;
}  // namespace ORLFoundation

namespace orlftool {

/// A node for each step that a walk can stand at, a frame around each group, an edge for each
/// transition to where it really leads, and a node for each way in which the process ends. A
/// transition that leads nowhere goes to a red node.
[[nodiscard]] std::string dotOfProcess(const std::shared_ptr<ORLFoundation::ORLFProcessStep>& root);
/// A text as a label shows it, in quotes: neither it nor a reader of DOT finds an escape in it.
[[nodiscard]] std::string dotLabel(std::string_view text);

/// Draws a graph to an SVG file, whole or not at all. Throws JobFailure where `dot` is not
/// installed, and where it fails.
void drawSvg(const std::string& dot, const std::string& path);

}  // namespace orlftool
