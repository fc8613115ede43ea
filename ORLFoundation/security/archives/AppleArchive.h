/// A folder packed into one file, plain or protected by a password, and unpacked. The operations
/// are to be awaited, or started as jobs; their work is done on the global queue.
///
///     const auto executor = CooperativeExecutorOnGlobalQueue();
///     const auto job = CooperativeJob<>::start(
///         AppleArchive::archive(folder, file, std::string("correct horse")), executor);
///     job->result();   // throws what went wrong
///
/// Failures are thrown as `ArchiveError`: with a record of `FoundationErrorDomain` for what the
/// library itself finds, of `ArchiveErrorDomain` for what is wrong with the archive, and of
/// `NSCocoaErrorDomain` for the file system. A task that is cancelled throws `CancellationError`
/// within the next megabyte. After either nothing is left at the destination, nor beside it.
///
/// A destination that exists is refused and stays as it is. docs/archives-of-folders.md tells the
/// rest.
#pragma once

#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/tasks/async/CooperativeTask.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

class ORLFProgressItem;

/// What callers may ask of an archive's operations.
struct AppleArchiveOptions {
  /// Is set to the bytes that were worked off, of all: those of the files, or of the archive that
  /// is read.
  std::shared_ptr<ORLFProgressItem> progress = nullptr;
  /// Extraction alone: gives files to their users and groups, which takes the right to do so.
  bool keepsOwners = false;
  /// Extraction alone: keeps the bits by which programs run as their owner, and the sticky one.
  bool keepsSetIDBits = false;
  /// Extraction alone: an archive that holds more is refused.
  std::uint64_t mostEntries = 1'000'000;
  /// The same for the bytes of all files together: 64 GiB.
  std::uint64_t mostBytes = std::uint64_t{64} << 30;
};

class AppleArchive final {
 public:
  AppleArchive() = delete;

  /// `archive(_:to:)`  Packs what a folder holds: files, folders, and links as links, with their
  /// modes and owners. Pipes, sockets and devices are left out, and the log says so.
  [[nodiscard]] static CooperativeTask<> archive(NSURL source, NSURL to,
                                                 AppleArchiveOptions options = {});
  /// `archive(_:to:withPassword:)`  The same, readable with the password alone; an empty one is
  /// `archiveRequiresPassword`. The task's copy of the password is wiped.
  [[nodiscard]] static CooperativeTask<> archive(NSURL source, NSURL to, std::string withPassword,
                                                 AppleArchiveOptions options = {});
  /// `extract(_:to:)`  Makes a folder of an archive. A protected one is `archiveRequiresPassword`.
  /// The folder appears whole or not at all. Modes are kept but for the rights to run as another
  /// user, links are made last and lead where they led.
  [[nodiscard]] static CooperativeTask<> extract(NSURL source, NSURL to,
                                                 AppleArchiveOptions options = {});
  /// `extract(_:to:withPassword:)`  The same of a protected archive. A wrong password is
  /// `ArchiveErrorWrongKey`, everything that does not fit behind that is damage. An archive that is
  /// not protected is refused: somebody may have put it in the place of one that was.
  [[nodiscard]] static CooperativeTask<> extract(NSURL source, NSURL to, std::string withPassword,
                                                 AppleArchiveOptions options = {});
};

}  // namespace ORLFoundation
