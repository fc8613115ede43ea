/// The two folders of a replacement on the disk, each held open from its beginning to its end.
#pragma once

#include <ORLFoundation/files/operations/internal/ReplacementTrees.h>
#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/files/ItemCopy.h>
#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/files/ReplacementFolder.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace ORLFoundation::internal::operations {

class HeldTrees final : public ReplacementTrees {
 public:
  /// Works as the manager does.
  HeldTrees(const NSFileManager& manager, const std::string& destination,
            const std::string& source);
  ~HeldTrees() override { endTemporaryFolder(); }
  HeldTrees(const HeldTrees&) = delete;
  HeldTrees& operator=(const HeldTrees&) = delete;

  /// Why the two cannot be worked on; nothing when they can. Asked first.
  [[nodiscard]] files::FileOutcome check();
  /// The destination's path, with its links resolved.
  [[nodiscard]] const std::string& destinationPath() const noexcept;
  /// Removes what killed processes have left in the destination.
  void removeAbandoned();

  [[nodiscard]] std::optional<Entries> list(Side side, const std::string& folder,
                                            NSErrorSlot error) override;
  [[nodiscard]] std::optional<std::string> resolved(Side side, const std::string& item,
                                                    NSErrorSlot error) override;
  [[nodiscard]] std::optional<ItemValues> values(Side side, const std::string& item,
                                                 NSErrorSlot error) override;
  void requestTemporaryFolder() override;
  [[nodiscard]] bool copy(const std::string& sourceItem, const std::string& destinationItem,
                          NSErrorSlot error) override;
  [[nodiscard]] bool replace(const std::string& destinationItem, NSErrorSlot error) override;
  void discard(const std::string& destinationItem) override;
  [[nodiscard]] bool remove(const std::string& destinationItem, NSErrorSlot error) override;
  [[nodiscard]] bool settle(NSErrorSlot error) override;
  void endTemporaryFolder() final;

 private:
  [[nodiscard]] files::HeldFolder& root(Side side) noexcept;
  [[nodiscard]] files::FileOutcome removeFolder(const std::string& item);

  /// What the status of an item said.
  struct Asked {
    Side side = Side::Destination;
    std::string item;
    struct stat status = {};
    int number = 0;
  };

  files::FileCalls& calls_;
  const files::CopyToDisk toDisk_;
  const files::CopyNotice notice_;
  files::FileOutcome failureOfDestination_, failureOfSource_;
  files::HeldFolder destination_, source_;
  std::unique_ptr<files::ReplacementFolder> temporary_;
  std::optional<files::ItemCopy> copies_;
  files::FileOutcome failureOfTemporary_;
  std::size_t removedFolders_ = 0;
  std::set<std::string> changedFolders_;
  /// The item that was resolved last, whose values are wanted next.
  Asked last_;
};

}  // namespace ORLFoundation::internal::operations
