/// Entries of all that stands in a folder.
#pragma once

#include <ORLFoundation/platform/container/ArchiveStream.h>
#include <ORLFoundation/platform/container/FileByteStream.h>
#include <ORLFoundation/platform/files/FolderWalk.h>
#include <ORLFoundation/platform/files/HeldFolder.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ORLFoundation::internal::container {

class FolderPacking {
 public:
  FolderPacking(files::HeldFolder& folder, const ArchiveHeader::FieldKeySet& keys,
                const ArchiveStream::PackingOptions& options)
      : folder_(folder), keys_(keys), options_(options), piece_(std::size_t{1} << 20) {}

  void packInto(ArchiveStream& stream);

 private:
  void packItem(ArchiveStream& stream, const files::FolderWalk::Item& item);
  void packFile(ArchiveStream& stream, const std::string& path);
  void packLink(ArchiveStream& stream, const std::string& path, const struct stat& status);
  [[nodiscard]] ArchiveHeader headerOf(char type, const std::string& path) const;
  void appendTraits(ArchiveHeader& header, const struct stat& status) const;
  void advance(std::uint64_t bytes);
  [[noreturn]] void throwUnreadable(const std::string& path) const;

  files::HeldFolder& folder_;
  const ArchiveHeader::FieldKeySet& keys_;
  const ArchiveStream::PackingOptions& options_;
  std::uint64_t packed_ = 0;
  std::vector<std::uint8_t> piece_;
};

}  // namespace ORLFoundation::internal::container
