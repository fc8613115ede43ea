#include <ORLFoundation/process/definition/internal/ORLFFindingText.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <memory>

namespace ORLFoundation::internal::definition {

namespace {

constexpr std::size_t kMostBytes = 200;

}  // namespace

std::string shortened(std::string_view name, std::size_t most) {
  if (name.size() <= most) return std::string(name);
  while (most > 0 && base::continuesUTF8Character(name[most])) --most;
  return std::string(name.substr(0, most)) + "...";
}

std::string quotedName(std::string_view name) { return '"' + shortened(name) + '"'; }

std::string quotedFullName(const ORLFProcessStep& step) {
  std::string text = step.identifier();
  auto parent = step.parentStep();
  for (; parent && text.size() <= kMostBytes; parent = parent->parentStep())
    text.insert(0, parent->identifier() + ".");
  if (text.size() <= kMostBytes) return '"' + text + '"';
  std::size_t begin = text.size() - kMostBytes;
  while (begin < text.size() && base::continuesUTF8Character(text[begin])) ++begin;
  return "\"..." + text.substr(begin) + '"';
}

}  // namespace ORLFoundation::internal::definition
