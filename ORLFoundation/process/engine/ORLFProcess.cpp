#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ORLFoundation {

namespace {

/// What a search for the next step comes to.
enum AdvanceResult : std::int32_t { kMoved = 0, kFailed = 1, kEnded = 2 };

constexpr std::int32_t kRecorded = 0;

[[noreturn]] void raiseBeyondHistory(const char* operation, NSUInteger index, std::size_t count) {
  throw NSException(NSRangeException, std::string("-[ORLFProcess ") + operation + "]: index " +
                                          std::to_string(index) + " beyond a history of " +
                                          std::to_string(count));
}

/// The path from the root, whose name stands first.
std::string_view withoutRoot(std::string_view fullIdentifier) {
  const std::size_t point = fullIdentifier.find('.');
  return point == std::string_view::npos ? fullIdentifier : fullIdentifier.substr(point + 1);
}

}  // namespace

ORLFProcess::ORLFProcess(Step rootStep) : rootStep_(std::move(rootStep)) {}

void ORLFProcess::setCurrentStep(Step value) {
  changeValue("currentStep", [&] { currentStep_ = std::move(value); });
}

void ORLFProcess::record(const Step& step, const id& data) {
  auto fullIdentifier = step ? std::optional(step->fullIdentifier()) : std::nullopt;
  addStateFullIdentifier(std::move(fullIdentifier), data, historyTypeForStep(step));
}

// A delegate may let go of the process that calls it: each move holds the process, where anybody
// does, to its end.

ORLFProcess::Step ORLFProcess::run() {
  const auto held = weak_from_this().lock();
  if (!currentStep_) {
    setCurrentStep(rootStep_ ? rootStep_->initialStep() : nullptr);
    record(Step(currentStep_), nullptr);
  }
  return currentStep_;
}

ORLFProcess::Step ORLFProcess::advanceWithTransition(Transition transition, const id& contextData) {
  const auto held = weak_from_this().lock();
  if (!canLeaveCurrentStep()) return nullptr;
  const Step from = currentStep_;
  std::int32_t result = kFailed;
  const Step found = advanceFromStep(from, transition, contextData, result);
  Step to = finalStepOfAdvance(from, transition, contextData, result, found);
  if (to != from) {
    record(to, contextData);
    setCurrentStep(to);
  }
  tellOfAdvance(from, transition, contextData, result, to);
  return to;
}

ORLFProcess::Step ORLFProcess::finalStepOfAdvance(const Step& from, Transition transition,
                                                  const id& data, std::int32_t result,
                                                  const Step& found) {
  switch (result) {
    case kMoved:
      return handleAdvanceFromStepDidSucceedToStep(from, transition, found, data);
    case kFailed:
      return handleAdvanceFromStepDidFailWithData(from, transition, data);
    case kEnded:
      return handleAdvanceFromStepDidEndWithData(from, transition, data);
    default:
      return nullptr;
  }
}

void ORLFProcess::tellOfAdvance(const Step& from, Transition transition, const id& data,
                                std::int32_t result, const Step& to) {
  if (const auto listener = delegate()) listener->orlfProcessDidLeaveStep(*this, from);
  // Asked for anew: whoever is told may put another in its place.
  const auto listener = delegate();
  if (!listener) return;
  if (to) {
    listener->orlfProcessDidAdvanceToStep(*this, to, data);
  } else if (result != kFailed) {
    const auto response = from ? from->responseForTransition(transition) : std::nullopt;
    listener->orlfProcessDidEndProcessWithTransition(*this, response, data);
  }
}

ORLFProcess::Step ORLFProcess::jumpToStep(std::string_view identifierPath, const id& contextData) {
  const auto held = weak_from_this().lock();
  Step step = rootStep_ ? rootStep_->childStepWithIdentifierPath(identifierPath) : nullptr;
  if (!step) return nullptr;
  setCurrentStep(step);
  record(step, contextData);
  if (const auto listener = delegate())
    listener->orlfProcessDidJumpToStep(*this, step, contextData);
  return step;
}

bool ORLFProcess::canBack() const {
  return isCurrentStepInHistory() ? historyIndex_ >= 2 : historyIndex_ != 0;
}

ORLFProcess::Step ORLFProcess::back() {
  const auto held = weak_from_this().lock();
  if (!canBack() || !canLeaveCurrentStep()) return nullptr;
  const Step from = currentStep_;
  const NSUInteger index = historyIndex_ - (isCurrentStepInHistory() ? 1 : 0);
  if (index == 0 || index > history_.size()) raiseBeyondHistory("back", index, history_.size());
  historyIndex_ = index;
  Step to = moveToStepForHistoryIndex(index - 1);
  if (const auto listener = delegate()) listener->orlfProcessDidLeaveStep(*this, from);
  if (!to) return nullptr;
  if (const auto listener = delegate()) listener->orlfProcessDidBackToStep(*this, to, nullptr);
  return to;
}

bool ORLFProcess::canForward() const { return historyIndex_ < history_.size(); }

ORLFProcess::Step ORLFProcess::forward() {
  const auto held = weak_from_this().lock();
  if (!canForward() || !canLeaveCurrentStep()) return nullptr;
  if (!canForward()) raiseBeyondHistory("forward", historyIndex_, history_.size());
  return moveToStepForHistoryIndex(historyIndex_++);
}

void ORLFProcess::clearHistory() {
  const auto held = weak_from_this().lock();
  if (history_.empty()) return;
  history_.clear();
  historyIndex_ = 0;
  if (currentStep_) record(Step(currentStep_), nullptr);
}

void ORLFProcess::setHistory(History history, NSUInteger historyIndex) {
  if (historyIndex > history.size())
    raiseBeyondHistory("setHistory:historyIndex:", historyIndex, history.size());
  history_ = std::move(history);
  historyIndex_ = historyIndex;
}

std::optional<NSData> ORLFProcess::saveSate() { return std::nullopt; }

bool ORLFProcess::loadSateFromData(const std::optional<NSData>&, NSErrorSlot) { return false; }

std::int32_t ORLFProcess::historyTypeForStep(const Step& step) {
  const auto listener = delegate();
  return listener ? listener->orlfProcessHistoryTypeForStep(*this, step) : kRecorded;
}

void ORLFProcess::addStateFullIdentifier(std::optional<std::string> fullIdentifier, const id&,
                                         std::int32_t toHistoryWithType) {
  if (toHistoryWithType != kRecorded) return;
  history_.resize(std::min<std::size_t>(historyIndex_, history_.size()));
  history_.push_back(std::move(fullIdentifier));
  historyIndex_ = history_.size();
}

bool ORLFProcess::canLeaveCurrentStep() {
  const Step step = currentStep_;
  const auto listener = delegate();
  return !step || !listener || listener->orlfProcessWillLeaveStep(*this, step);
}

ORLFProcess::Step ORLFProcess::handleAdvanceFromStepDidSucceedToStep(const Step&, Transition,
                                                                     const Step& toStep,
                                                                     const id& data) {
  const auto listener = delegate();
  const bool advances = !listener || listener->orlfProcessShouldAdvanceToStep(*this, toStep, data);
  return advances ? toStep : currentStep_;
}

ORLFProcess::Step ORLFProcess::handleAdvanceFromStepDidFailWithData(const Step& from,
                                                                    Transition transition,
                                                                    const id& data) {
  const auto listener = delegate();
  const bool fails = !listener || listener->orlfProcessAdvanceWithTransitionShouldFailFromStep(
                                      *this, transition, from, data);
  return fails ? nullptr : currentStep_;
}

ORLFProcess::Step ORLFProcess::handleAdvanceFromStepDidEndWithData(const Step&,
                                                                   Transition transition,
                                                                   const id& data) {
  const auto listener = delegate();
  const bool ends = !listener || listener->orlfProcessAdvanceWithTransitionShouldEndProcessWithData(
                                     *this, transition, data);
  return ends ? nullptr : currentStep_;
}

ORLFProcess::Step ORLFProcess::advanceFromStep(const Step& step, Transition transition, const id&,
                                               std::int32_t& result) {
  std::optional<std::string> response;
  for (Step from = step; from;) {
    const id entry = from->siblingIdentiferForTransition(transition);
    Step parent = from->parentStep();
    if (entry.isNil() || (!parent && entry.isNull())) {
      result = kEnded;
      return nullptr;
    }
    if (!entry.isNull()) {
      const auto* const name = entry.get<std::string>();
      const Step sibling = parent && name ? parent->childStepWithIdentifier(*name) : nullptr;
      Step found = sibling ? sibling->initialStep() : nullptr;
      result = found ? kMoved : kFailed;
      return found;
    }
    response = from->responseForTransition(transition);
    transition = response;
    from = std::move(parent);
  }
  result = kFailed;
  return nullptr;
}

ORLFProcess::Step ORLFProcess::moveToStepForHistoryIndex(NSUInteger index) {
  if (index >= history_.size())
    raiseBeyondHistory("moveToStepForHistoryIndex:", index, history_.size());
  const std::optional<std::string>& entry = history_[index];
  if (!entry) return nullptr;
  Step step = rootStep_ ? rootStep_->childStepWithIdentifierPath(withoutRoot(*entry)) : nullptr;
  setCurrentStep(step);
  return step;
}

bool ORLFProcess::isCurrentStepInHistory() const {
  if (!currentStep_ || history_.empty()) return false;
  if (historyIndex_ == 0 || historyIndex_ > history_.size())
    raiseBeyondHistory("isCurrentStepInHistory", historyIndex_, history_.size());
  const std::optional<std::string>& entry = history_[historyIndex_ - 1];
  return entry && *entry == currentStep_->fullIdentifier();
}

const NSKeyTable& ORLFProcess::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readOnly<&ORLFProcess::rootStep>("rootStep"),
       NSKey::readWrite<&ORLFProcess::currentStep, &ORLFProcess::setCurrentStep>("currentStep")});
  return table;
}

}  // namespace ORLFoundation
