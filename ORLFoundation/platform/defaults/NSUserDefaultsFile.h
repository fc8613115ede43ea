/// A user's settings in a property-list file of the program, in the user's configuration folder.
///
/// The file is replaced whole: the new one is written beside it, brought to the disk, and moved
/// over it, so that a crash leaves the one or the other. Only the user may read it. While it is
/// replaced a lock on its folder keeps other processes waiting, and each change is put into what
/// the file then holds.
#pragma once

#include <ORLFoundation/platform/defaults/NSUserDefaultsStore.h>

#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class NSUserDefaultsFile final : public NSUserDefaultsStore {
 public:
  /// The path need not exist; folders on the way are made with the first change. A path that leads
  /// to a file through links replaces that file.
  explicit NSUserDefaultsFile(std::string path) : path_(std::move(path)) {}
  /// "<folder>/<domain>/defaults.plist", where the folder is that of XDG_CONFIG_HOME when it is an
  /// absolute path, else ".config" in the user's home. Slashes in the domain become underscores,
  /// and so does a point at its start. "" when there is neither folder nor home, or no domain.
  [[nodiscard]] static std::string pathForDomain(std::string_view domain);

  [[nodiscard]] const std::string& path() const noexcept { return path_; }

  /// An absent file holds nothing. So does one that is no property list with a dictionary, and the
  /// error says that it is broken.
  [[nodiscard]] std::shared_ptr<NSDictionary> read(NSErrorSlot error = nullptr) override;
  /// A file that is no such list is kept beside the new one, as "defaults.plist.broken", or with
  /// the first number from 2 on behind it that is free.
  [[nodiscard]] std::shared_ptr<NSDictionary> apply(const NSUserDefaultsChanges& changes,
                                                    NSErrorSlot error = nullptr) override;

 private:
  const std::string path_;
};

}  // namespace ORLFoundation
