#include <ORLFoundation/process/definition/internal/ORLFReferenceCensus.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/process/definition/internal/ORLFFindingText.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace ORLFoundation::internal::definition {

namespace {

constexpr NSUInteger kMost = std::numeric_limits<NSUInteger>::max();
constexpr std::size_t kNamesInAChain = 40;
constexpr std::size_t kBytesOfAName = 60;

NSUInteger sum(NSUInteger left, NSUInteger right) {
  return left > kMost - right ? kMost : left + right;
}

void append(std::string& chain, const ReferenceCensus::StepData& record) {
  if (!chain.empty()) chain += " > ";
  chain += shortened(record->identifier().value_or(""), kBytesOfAName);
}

}  // namespace

/// Walks the record's own tree, without its references' targets.
ReferenceCensus::Entry& ReferenceCensus::enter(const StepData& record) {
  Entry& entry = entries_[record.get()];
  std::vector<ORLFProcessStepBuilderStepData*> open = {record.get()};
  NSUInteger records = 0;
  while (!open.empty()) {
    ORLFProcessStepBuilderStepData* const around = open.back();
    open.pop_back();
    for (const StepData& child : around->childSteps()) {
      if (!child) continue;
      if (++records > limit_) {
        entry.total = kMost;
        return entry;
      }
      open.push_back(child.get());
      const auto target = child->reference() && child->identifier()
                              ? roots_.find(*child->identifier())
                              : roots_.end();
      if (target != roots_.end() && target->second) {
        entry.targets.push_back({child, target->second});
      } else {
        entry.total = sum(entry.total, 1);
      }
    }
  }
  return entry;
}

NSUInteger ReferenceCensus::count(const StepData& record) {
  const auto known = entries_.find(record.get());
  if (known != entries_.end()) return known->second.total;
  enter(record);
  std::vector<Visit> open = {{record, 0}};
  while (true) {
    Visit& visit = open.back();
    Entry& entry = entries_.at(visit.record.get());
    if (visit.next < entry.targets.size()) {
      const Target target = entry.targets[visit.next++];
      const auto counted = entries_.find(target.record.get());
      if (counted == entries_.end()) {
        enter(target.record);
        open.push_back({target.record, 0});
      } else if (counted->second.isOpen) {
        meetCycle(open, target);
        entry.total = sum(entry.total, 1);
      } else {
        entry.total = sum(entry.total, counted->second.total);
      }
      continue;
    }
    entry.isOpen = false;
    open.pop_back();
    if (open.empty()) return entry.total;
    Entry& around = entries_.at(open.back().record.get());
    around.total = sum(around.total, entry.total);
  }
}

void ReferenceCensus::meetCycle(const std::vector<Visit>& open, const Target& target) {
  const auto start = std::find_if(
      open.begin(), open.end(), [&](const Visit& visit) { return visit.record == target.record; });
  const auto length = static_cast<std::size_t>(open.end() - start);
  std::string chain;
  for (auto visit = start; visit != open.end(); ++visit) {
    const auto number = static_cast<std::size_t>(visit - start);
    if (number < kNamesInAChain) append(chain, visit->record);
    if (number == kNamesInAChain) chain += " > ...";
  }
  append(chain, target.record);
  const std::string way =
      "over " + std::to_string(length) + (length == 1 ? " reference: " : " references: ") + chain;
  if (!cycleBlock_) throw NSException(NSGenericException, "Steps refer to themselves " + way);
  cycleBlock_(target.reference, way);
}

std::string ReferenceCensus::costliestChain(const StepData& record) const {
  std::string chain;
  StepData step = record;
  for (std::size_t names = 0; step; ++names) {
    if (names == kNamesInAChain) return chain + " > ...";
    append(chain, step);
    StepData costliest;
    NSUInteger most = 0;
    for (const Target& target : entries_.at(step.get()).targets) {
      const NSUInteger total = entries_.at(target.record.get()).total;
      if (total <= most) continue;
      most = total;
      costliest = target.record;
    }
    step = costliest;
  }
  return chain;
}

}  // namespace ORLFoundation::internal::definition
