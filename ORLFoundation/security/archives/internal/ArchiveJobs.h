/// Packing and extraction, from file to file, on the calling thread.
#pragma once

#include <ORLFoundation/platform/container/ArchiveStream.h>
#include <ORLFoundation/platform/container/FileByteStream.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/security/archives/AppleArchive.h>
#include <ORLFoundation/security/archives/internal/KeyRecord.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::archives {

/// The fields that are written of each entry; links have their targets too.
inline constexpr std::string_view kFieldKeys = "TYP,PAT,DAT,UID,GID,MOD";

class ArchiveJob {
 public:
  /// `check` is called now and then; what it throws ends the work.
  ArchiveJob(std::function<void()> check, AppleArchiveOptions options)
      : check_(std::move(check)), options_(std::move(options)) {}

  void pack(const NSURL& source, const NSURL& to, const std::optional<NSData>& password,
            const crypto::ScryptCost& cost = kPasswordCost);
  void extract(const NSURL& source, const NSURL& to, const std::optional<NSData>& password);

 private:
  void packEntries(const std::string& source, container::FileByteStream& file,
                   ArchiveByteStream& over, std::uint64_t total);
  [[nodiscard]] std::uint64_t bytesIn(files::HeldFolder& folder) const;
  void extractEntries(container::FileByteStream& file, std::string_view magic,
                      const std::optional<NSData>& password, const std::string& folder);
  void processEntries(container::FileByteStream& file, ArchiveByteStream& over,
                      const std::string& folder);
  void report(std::uint64_t done, std::uint64_t total);

  const std::function<void()> check_;
  const AppleArchiveOptions options_;
  std::optional<std::uint64_t> reported_;
};

}  // namespace ORLFoundation::internal::archives
