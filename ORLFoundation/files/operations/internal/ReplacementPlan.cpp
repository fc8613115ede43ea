#include <ORLFoundation/files/operations/internal/ReplacementPlan.h>

#include <ORLFoundation/platform/files/NSFileErrors.h>

#include <optional>
#include <utility>

namespace ORLFoundation::internal::operations {
namespace {

using files::FileKind;
using files::FolderWalk;
using Error = ReplacementPlan::Error;

bool isCode(const Error& error, NSInteger code) {
  return error && error->domain() == NSCocoaErrorDomain && error->code() == code;
}

/// nil equals nothing, itself included.
template <class Value>
bool areEqualEntries(const std::optional<Value>& left, const std::optional<Value>& right) {
  return left && right && *left == *right;
}

/// Whether two items are told apart by neither date nor size. Values are compared as they were
/// asked for, and the date is asked for on neither side, so that no item ever counts as unchanged:
/// a file that is equal on both sides is copied again.
bool isUnchanged(const ItemValues& item, const ItemValues& counterpart) {
  return areEqualEntries(item.contentModificationDate, counterpart.contentModificationDate) &&
         areEqualEntries(item.fileSize, counterpart.fileSize);
}

}  // namespace

ReplacementPlan::ReplacementPlan(ReplacementTrees& trees, NSUInteger options, Ask ask)
    : trees_(trees), options_(options), ask_(std::move(ask)) {}

Error ReplacementPlan::make() {
  if (Error error = walkThrough(Side::Destination, &ReplacementPlan::planRemoval)) return error;
  return walkThrough(Side::Source, &ReplacementPlan::planUpdate);
}

Error ReplacementPlan::walkThrough(Side side, Visit visit) {
  Error error;
  const auto list = [&](const std::string& folder) { return trees_.list(side, folder, &error); };
  FolderWalk walk(list, options_);
  while (const auto item = walk.next())
    if (Error failure = (this->*visit)(walk, *item)) return failure;
  return walk.hasFailed() ? error : nullptr;
}

bool ReplacementPlan::isWanted(const std::string& item,
                               ORLFDirectoryReplacementAction action) const {
  return !ask_ || ask_(item, action);
}

std::optional<std::string> ReplacementPlan::resolved(Side side, const FolderWalk::Item& item,
                                                     NSErrorSlot error) {
  // The walk itself goes through no link.
  if (item.kind != FileKind::Link) return item.path;
  return trees_.resolved(side, item.path, error);
}

Error ReplacementPlan::planRemoval(FolderWalk& walk, const FolderWalk::Item& item) {
  Error error;
  const auto path = resolved(Side::Destination, item, &error);
  if (!path) return error;
  const auto counterpart = trees_.resolved(Side::Source, *path, &error);
  if (!counterpart) return error;
  if (trees_.values(Side::Source, *counterpart, &error)) return nullptr;
  if (!isCode(error, NSFileReadNoSuchFileError)) return error;
  if (!isWanted(item.path, ORLFDirectoryReplacementActionRemove)) return nullptr;
  Error ignored;
  if (trees_.values(Side::Destination, item.path, &ignored)) {
    removals_.push_back(*path);
    walk.skipDescendants();
  }
  return nullptr;
}

Error ReplacementPlan::planUpdate(FolderWalk& walk, const FolderWalk::Item& item) {
  Error error;
  const ItemValues values{.isDirectory = item.kind == FileKind::Folder};
  const auto path = resolved(Side::Source, item, &error);
  if (!path) return error;
  const auto counterpart = trees_.resolved(Side::Destination, *path, &error);
  if (!counterpart) return error;
  const auto others = trees_.values(Side::Destination, *counterpart, &error);
  if (!others && !isCode(error, NSFileReadNoSuchFileError)) return error;
  ORLFDirectoryReplacementAction action = ORLFDirectoryReplacementActionReplace;
  if (!others) {
    action = ORLFDirectoryReplacementActionAdd;
  } else if (values.isDirectory && others->isDirectory) {
    action = ORLFDirectoryReplacementActionDescend;
  } else if (isUnchanged(values, *others)) {
    return nullptr;
  }
  const bool isTaken = isWanted(*counterpart, action);
  if (isTaken && action == ORLFDirectoryReplacementActionDescend) return nullptr;
  walk.skipDescendants();
  if (isTaken) updates_.push_back({*path, *counterpart});
  return nullptr;
}

Error ReplacementPlan::carryOut() {
  trees_.requestTemporaryFolder();
  Error error = carryOutChanges();
  trees_.endTemporaryFolder();
  return error;
}

Error ReplacementPlan::carryOutChanges() {
  for (const Update& update : updates_)
    if (Error error = carryOutUpdate(update)) return error;
  for (const std::string& item : removals_) {
    Error error;
    if (!trees_.remove(item, &error) && !isCode(error, NSFileNoSuchFileError)) return error;
  }
  Error error;
  return trees_.settle(&error) ? nullptr : error;
}

Error ReplacementPlan::carryOutUpdate(const Update& update) {
  Error error;
  if (!trees_.copy(update.sourceItem, update.destinationItem, &error)) return error;
  const bool isReplaced = trees_.replace(update.destinationItem, &error);
  trees_.discard(update.destinationItem);
  return isReplaced ? nullptr : error;
}

}  // namespace ORLFoundation::internal::operations
