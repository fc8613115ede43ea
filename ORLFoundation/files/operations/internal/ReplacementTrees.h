/// The two folders of a replacement, as its steps see them. Items are named by their paths from the
/// roots, with "/" between names.
#pragma once

#include <ORLFoundation/platform/files/FolderWalk.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation::internal::operations {

enum class Side : std::uint8_t { Destination, Source };

/// The values of an item that were asked for.
struct ItemValues {
  bool isDirectory = false;
  std::optional<std::int64_t> fileSize = std::nullopt;
  std::optional<NSDate> contentModificationDate = std::nullopt;
};

class ReplacementTrees {
 public:
  using Entries = std::vector<files::FolderEntry>;

  ReplacementTrees() = default;
  virtual ~ReplacementTrees() = default;
  ReplacementTrees(const ReplacementTrees&) = delete;
  ReplacementTrees& operator=(const ReplacementTrees&) = delete;

  /// What stands in a folder; nil with an error.
  [[nodiscard]] virtual std::optional<Entries> list(Side side, const std::string& folder,
                                                    NSErrorSlot error) = 0;
  /// The path of an item with its links resolved, also where nothing stands there; nil with an
  /// error where that leads out of the root.
  [[nodiscard]] virtual std::optional<std::string> resolved(Side side, const std::string& item,
                                                            NSErrorSlot error) = 0;
  /// The values of an item whose path is resolved; nil with an error, 260 for what is absent.
  [[nodiscard]] virtual std::optional<ItemValues> values(Side side, const std::string& item,
                                                         NSErrorSlot error) = 0;

  /// Makes the folder for new items. A failure shows in the copies.
  virtual void requestTemporaryFolder() = 0;
  /// Copies an item of the source into that folder, under the last name of the one that it is to
  /// replace.
  [[nodiscard]] virtual bool copy(const std::string& sourceItem, const std::string& destinationItem,
                                  NSErrorSlot error) = 0;
  /// Puts the copy in the place of the item.
  [[nodiscard]] virtual bool replace(const std::string& destinationItem, NSErrorSlot error) = 0;
  /// Removes what is left under that name: the copy, or what it took the place of.
  virtual void discard(const std::string& destinationItem) = 0;
  /// Removes an item of the destination; code 4 where it is absent.
  [[nodiscard]] virtual bool remove(const std::string& destinationItem, NSErrorSlot error) = 0;
  /// Called when all changes are made.
  [[nodiscard]] virtual bool settle(NSErrorSlot error) = 0;
  virtual void endTemporaryFolder() = 0;
};

}  // namespace ORLFoundation::internal::operations
