/// Counts the steps that records and their references come to, before one of them is made: a few
/// lines that refer to each other can ask for more steps than any memory holds.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::definition {

class ReferenceCensus {
 public:
  using StepData = std::shared_ptr<ORLFProcessStepBuilderStepData>;
  using StepDataMap = std::map<std::string, StepData, std::less<>>;

  /// Records that come to more than `limit` by themselves are not counted to their end: made by
  /// hand, they may hold themselves.
  ReferenceCensus(const StepDataMap& roots, NSUInteger limit) : roots_(roots), limit_(limit) {}

  /// Is told of each reference that leads back to a record around it, with the way: "over 2
  /// references: a > b > a".
  using CycleBlock = std::function<void(const StepData& reference, const std::string& way)>;
  /// In place of raising; such references count as steps without children.
  void setCycleBlock(CycleBlock block) { cycleBlock_ = std::move(block); }

  /// The steps of the record's tree, the record's own among them; the largest number where they
  /// are more than a number tells. Raises `NSGenericException` for a reference that leads back to a
  /// record around it; the reason names the way.
  [[nodiscard]] NSUInteger count(const StepData& record);
  /// The way from the record along the references that ask for most: "loan > page > field".
  [[nodiscard]] std::string costliestChain(const StepData& record) const;

 private:
  struct Target {
    StepData reference;
    StepData record;
  };
  struct Entry {
    NSUInteger total = 1;
    std::vector<Target> targets;  // one for each reference
    bool isOpen = true;
  };
  struct Visit {
    StepData record;
    std::size_t next = 0;
  };

  Entry& enter(const StepData& record);
  void meetCycle(const std::vector<Visit>& open, const Target& target);

  const StepDataMap& roots_;
  const NSUInteger limit_;
  CycleBlock cycleBlock_;
  std::map<const ORLFProcessStepBuilderStepData*, Entry> entries_;
};

}  // namespace ORLFoundation::internal::definition
