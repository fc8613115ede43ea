/// The four steps of a replacement: what to remove, what to copy, the copies, the removals.
#pragma once

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>
#include <ORLFoundation/files/operations/internal/ReplacementTrees.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation::internal::operations {

class ReplacementPlan {
 public:
  /// Whether an action is to be taken on an item of the destination.
  using Ask = std::function<bool(const std::string& item, ORLFDirectoryReplacementAction action)>;
  using Error = std::shared_ptr<const NSError>;

  /// `ask` may be empty: every action is taken then.
  ReplacementPlan(ReplacementTrees& trees, NSUInteger options, Ask ask);

  /// Makes the plan, without any change. Answers the error that stands in its way, or null.
  [[nodiscard]] Error make();
  /// Whether there is nothing to do.
  [[nodiscard]] bool isEmpty() const noexcept { return updates_.empty() && removals_.empty(); }
  /// Does what was planned, up to the first error, which it answers.
  [[nodiscard]] Error carryOut();

 private:
  struct Update {
    std::string sourceItem, destinationItem;
  };
  using Visit = Error (ReplacementPlan::*)(files::FolderWalk& walk,
                                           const files::FolderWalk::Item& item);

  [[nodiscard]] Error walkThrough(Side side, Visit visit);
  [[nodiscard]] std::optional<std::string> resolved(Side side, const files::FolderWalk::Item& item,
                                                    NSErrorSlot error);
  [[nodiscard]] Error planRemoval(files::FolderWalk& walk, const files::FolderWalk::Item& item);
  [[nodiscard]] Error planUpdate(files::FolderWalk& walk, const files::FolderWalk::Item& item);
  [[nodiscard]] bool isWanted(const std::string& item, ORLFDirectoryReplacementAction action) const;
  [[nodiscard]] Error carryOutUpdate(const Update& update);
  [[nodiscard]] Error carryOutChanges();

  ReplacementTrees& trees_;
  const NSUInteger options_;
  const Ask ask_;
  std::vector<std::string> removals_;
  std::vector<Update> updates_;
};

}  // namespace ORLFoundation::internal::operations
