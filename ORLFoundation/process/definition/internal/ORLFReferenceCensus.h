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
#include <vector>

namespace ORLFoundation::internal::definition {

class ReferenceCensus {
 public:
  using StepData = std::shared_ptr<ORLFProcessStepBuilderStepData>;
  using StepDataMap = std::map<std::string, StepData, std::less<>>;

  explicit ReferenceCensus(const StepDataMap& roots) : roots_(roots) {}

  /// The steps of the record's tree, the record's own among them; the largest number where they
  /// are more than a number tells. Raises `NSGenericException` for a reference that leads back to a
  /// record around it; the reason names the way.
  [[nodiscard]] NSUInteger count(const StepData& record);
  /// The way from the record along the references that ask for most: "loan > page > field".
  [[nodiscard]] std::string costliestChain(const StepData& record) const;

 private:
  struct Entry {
    NSUInteger total = 1;
    std::vector<StepData> targets;  // one for each reference
    bool isOpen = true;
  };
  struct Visit {
    StepData record;
    std::size_t next = 0;
  };

  Entry& enter(const StepData& record);
  [[noreturn]] static void raiseCycle(const std::vector<Visit>& open, const StepData& target);

  const StepDataMap& roots_;
  std::map<const ORLFProcessStepBuilderStepData*, Entry> entries_;
};

}  // namespace ORLFoundation::internal::definition
