/// The folder inside of a folder where new items are made before they are put in place. Its owner
/// holds a lock on it, which the system drops when the process ends: what is not locked was left by
/// a process that was killed.
#pragma once

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/HeldFolder.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::files {

class ReplacementFolder {
 public:
  /// Makes one in a folder, for the user alone. null with the failure.
  [[nodiscard]] static std::unique_ptr<ReplacementFolder> make(HeldFolder& root,
                                                               FileOutcome& failure);
  /// Removes what processes that are gone have left, as far as it can.
  static void removeAbandoned(HeldFolder& root);
  /// Whether a name in a folder is that of such a folder.
  [[nodiscard]] static bool isName(std::string_view name) noexcept;

  [[nodiscard]] HeldFolder& folder() noexcept { return folder_; }
  /// Removes the folder with all that it holds, as far as it can.
  void remove();

 private:
  ReplacementFolder(HeldFolder& root, std::string name, OpenFile folder);

  HeldFolder& root_;
  const std::string name_;
  HeldFolder folder_;
};

}  // namespace ORLFoundation::internal::files
