/// Copies of files, folders with all that they hold, and links.
///
///     HeldFolder books(calls, "/home/ann/books"), backup(calls, "/media/backup");
///     const FileOutcome failure = ItemCopy(books, backup, CopyToDisk::No).copy("2024", "2024");
#pragma once

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/HeldFolder.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ORLFoundation::internal::files {

/// Whether what is copied is on the disk when the copy returns.
enum class CopyToDisk : std::uint8_t { No, Yes };
/// Told of the path of each item before it is copied, those inside of folders too. May be empty.
using CopyNotice = std::function<void(const std::string& path)>;

/// A copy has the bytes of its original with its holes, the mode, the times of access and change,
/// the extended attributes, and the owner where the process may give files away; elsewhere it lays
/// down the rights to run as another user. A link is copied as a link. Names that share one file
/// become files of their own. Attributes of other namespaces than "user." are left out where the
/// process may not set them.
///
/// Pipes, sockets and devices are failures and are never opened.
class ItemCopy {
 public:
  ItemCopy(HeldFolder& source, HeldFolder& target, CopyToDisk toDisk, CopyNotice notice = nullptr);

  /// The target's item must not be there. What a failure leaves of it stays.
  [[nodiscard]] FileOutcome copy(const std::string& from, const std::string& to);

 private:
  [[nodiscard]] FileOutcome copyFile(const std::string& from, const std::string& to);
  [[nodiscard]] FileOutcome copyFolder(const std::string& from, const std::string& to);
  [[nodiscard]] FileOutcome copyLink(const std::string& from, const std::string& to,
                                     const struct stat& status);
  [[nodiscard]] FileOutcome copyBytes(int from, int to, const struct stat& status);
  [[nodiscard]] FileOutcome copyAroundHoles(int from, int to, off_t size);
  [[nodiscard]] FileOutcome copyPart(int from, int to, off_t begin, off_t end);
  [[nodiscard]] FileOutcome keepTraits(int from, int to, const struct stat& original);
  [[nodiscard]] FileOutcome keepAttributes(int from, int to);
  [[nodiscard]] FileOutcome unreadable() const;
  [[nodiscard]] FileOutcome unwritable() const;

  FileCalls& calls_;
  HeldFolder& source_;
  HeldFolder& target_;
  const CopyToDisk toDisk_;
  const CopyNotice notice_;
  std::vector<std::byte> buffer_;
  // The paths of the item at work, for failures.
  std::string from_, to_;
};

}  // namespace ORLFoundation::internal::files
