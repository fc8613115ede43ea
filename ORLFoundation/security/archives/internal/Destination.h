/// Where an archive or a folder is to appear: it is made under another name beside it, and renamed
/// at the end.
#pragma once

#include <ORLFoundation/platform/base/TemporaryPath.h>
#include <ORLFoundation/platform/container/FileByteStream.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/files/ReplacementFolder.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::archives {

class Destination {
 public:
  /// Throws `ArchiveError` for a path at which something stands, and where the folder that it is in
  /// cannot be opened.
  explicit Destination(const std::string& path);
  /// Removes what has not appeared.
  ~Destination();
  Destination(const Destination&) = delete;
  Destination& operator=(const Destination&) = delete;

  /// An empty file, readable as the process's mask allows. It is to be closed before it appears. A
  /// signal that ends the program removes it.
  [[nodiscard]] container::FileByteStream& makeFile();
  /// The path of an empty folder, for the user alone.
  [[nodiscard]] std::string makeFolder();
  /// Gives what was made its name. Throws `ArchiveError` where something stands there by now.
  void appear();

 private:
  [[noreturn]] void throwUnwritable(int number) const;

  const std::string path_;
  files::HeldFolder parent_;
  const std::string name_;
  std::string temporaryName_;
  std::optional<base::TemporaryPath> noted_;
  std::unique_ptr<container::FileByteStream> file_;
  std::unique_ptr<files::ReplacementFolder> folder_;
};

}  // namespace ORLFoundation::internal::archives
