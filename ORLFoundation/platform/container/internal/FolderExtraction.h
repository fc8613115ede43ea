/// Makes of entries what they were packed from, in a folder of their own.
#pragma once

#include <ORLFoundation/platform/container/ArchiveStream.h>
#include <ORLFoundation/platform/container/FileByteStream.h>
#include <ORLFoundation/platform/files/HeldFolder.h>

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace ORLFoundation::internal::container {

class FolderExtraction final : public ArchiveStream {
 public:
  FolderExtraction(files::HeldFolder folder, ExtractionOptions options)
      : folder_(std::move(folder)), options_(std::move(options)) {}

  void writeHeader(const ArchiveHeader& header) override;
  void writeBlob(ArchiveHeader::FieldKey key, std::span<const std::uint8_t> from) override;
  void close() override;

 private:
  /// What is set once the contents are there.
  struct Traits {
    std::optional<mode_t> mode;
    std::optional<std::uint64_t> user, group;
  };
  struct Late {
    std::string path;
    Traits traits;
    /// Of a link.
    std::string target;
  };

  void makeFolder(const std::string& path, const Traits& traits);
  void beginFile(const std::string& path, const ArchiveHeader& header);
  void finishFile();
  void noteLink(const std::string& path, const ArchiveHeader& header);
  void makeLink(const Late& link);
  /// A descriptor of the folder that an item goes into, made where it is absent.
  [[nodiscard]] int parentOf(const std::string& path);
  void setFolderTraits(const Late& folder);
  [[nodiscard]] Traits traitsOf(const ArchiveHeader& header) const;
  [[nodiscard]] bool takesOwners(const Traits& traits) const;
  void hold(const std::string& text);
  [[noreturn]] void throwUnwritable(const std::string& path) const;

  files::HeldFolder folder_;
  const ExtractionOptions options_;
  std::string path_;
  files::OpenFile file_;
  Traits fileTraits_;
  std::uint64_t left_ = 0, place_ = 0;
  std::vector<Late> folders_, links_;
  /// Folders that no entry has told of yet.
  std::set<std::string> implied_;
  bool hasRoot_ = false;
  std::uint64_t heldBytes_ = 0;
};

}  // namespace ORLFoundation::internal::container
