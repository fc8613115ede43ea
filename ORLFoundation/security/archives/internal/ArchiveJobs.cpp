#include <ORLFoundation/security/archives/internal/ArchiveJobs.h>

#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>
#include <ORLFoundation/platform/files/FolderWalk.h>
#include <ORLFoundation/security/archives/FoundationError.h>
#include <ORLFoundation/security/archives/internal/Destination.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

namespace ORLFoundation::internal::archives {

using container::FileByteStream;
using files::FileCalls;
using files::FileKind;
using files::FileWork;
using files::FolderWalk;
using files::HeldFolder;
using files::OpenFile;

namespace {

constexpr std::string_view kSealedMagic = "AEA1", kBlockMagic = "pbz";
constexpr std::array<std::string_view, 2> kEntryMagics{"AA01", "YAA1"};
// How finely progress is told.
constexpr std::uint64_t kReports = 1000;

[[noreturn]] void throwFoundationError(FoundationError error,
                                       std::shared_ptr<const NSError> underlying = nullptr) {
  throw ArchiveError(NSErrorOfFoundationError(error, underlying));
}

std::string pathOf(const NSURL& url, FileWork work) {
  std::shared_ptr<const NSError> error;
  const auto path = files::pathOfFileURL(url, work, &error);
  if (!path) throwFoundationError(FoundationError::nilUnwrappedOptional, error);
  return *path;
}

[[noreturn]] void throwUnopened(int number, const std::string& path) {
  throwFoundationError(FoundationError::nilUnwrappedOptional,
                       files::errorOf({FileWork::Read, number, path}));
}

std::unique_ptr<FileByteStream> openArchive(const std::string& path) {
  FileCalls& calls = *FileCalls::system();
  OpenFile file(calls, calls.open(AT_FDCWD, path, O_RDONLY | O_NONBLOCK));
  if (!file.isOpen()) throwUnopened(errno, path);
  try {
    return std::make_unique<FileByteStream>(calls, std::move(file), path);
  } catch (const ArchiveError& failure) {
    throwFoundationError(FoundationError::nilUnwrappedOptional, failure.error());
  }
}

/// The first four bytes, fewer of a shorter file. Pipes, which are not read from any place, are
/// streams that cannot be made.
std::string magicOf(const FileByteStream& file, const std::string& path) {
  std::array<std::byte, 4> bytes{};
  const ssize_t count = FileCalls::system()->read(file.number(), bytes, 0);
  if (count < 0) throwUnopened(errno, path);
  std::string magic;
  for (ssize_t i = 0; i < count; ++i)
    magic += static_cast<char>(bytes[static_cast<std::size_t>(i)]);
  return magic;
}

/// The archive behind its password. Once the record's seal has opened the key is right, and what
/// does not fit is damage; without a record the password itself makes the key.
std::shared_ptr<ArchiveByteStream> openSealed(FileByteStream& file,
                                              ArchiveEncryptionContext& context,
                                              const NSData& password) {
  const bool hasRecord =
      context.profile() ==
      ArchiveEncryptionContext::Profile::hkdf_sha256_aesctr_hmac__symmetric__none;
  if (hasRecord)
    context.setSymmetricKey(archiveKeyOfRecord(context.authData(), password));
  else
    context.setPassword(password.text());
  try {
    return ArchiveByteStream::decryptionStream(file, context);
  } catch (const ArchiveError& failure) {
    if (!failure.is(ArchiveErrorWrongKey)) throw;
    if (!hasRecord) throwWrongPassword();
    throw ArchiveError(ArchiveErrorDamaged,
                       "The archive is damaged: its first bytes were altered.");
  }
}

}  // namespace

/// A thousand times at most, and at the end.
void ArchiveJob::report(std::uint64_t done, std::uint64_t total) {
  if (!options_.progress) return;
  const std::uint64_t step = total / kReports + (total % kReports != 0 ? 1 : 0);
  if (reported_ && done < total && done - *reported_ < step) return;
  reported_ = done;
  options_.progress->updateValue(static_cast<double>(std::min(done, total)),
                                 static_cast<double>(total));
}

std::uint64_t ArchiveJob::bytesIn(HeldFolder& folder) const {
  std::uint64_t sum = 0;
  FolderWalk walk([&folder](const std::string& path) { return folder.list(path); }, 0);
  while (const auto item = walk.next()) {
    check_();
    struct stat status {};
    if (item->kind == FileKind::File && folder.status(item->path, status))
      sum += static_cast<std::uint64_t>(status.st_size);
  }
  return sum;
}

void ArchiveJob::pack(const NSURL& source, const NSURL& to, const std::optional<NSData>& password,
                      const crypto::ScryptCost& cost) {
  const std::string from = pathOf(source, FileWork::Read);
  Destination destination(pathOf(to, FileWork::Write));
  if (password && password->length() == 0)
    throwFoundationError(FoundationError::archiveRequiresPassword);
  HeldFolder folder(*FileCalls::system(), from);
  if (!folder.isOpen()) throwUnopened(errno, from);
  const std::uint64_t total = options_.progress ? bytesIn(folder) : 0;
  report(0, total);
  if (!password) {
    FileByteStream& file = destination.makeFile();
    const auto packed = ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, file);
    packEntries(from, file, *packed, total);
  } else {
    const SymmetricKey key(SymmetricKeySize::bits256);
    ArchiveEncryptionContext context(
        ArchiveEncryptionContext::Profile::hkdf_sha256_aesctr_hmac__symmetric__none,
        ArchiveCompression::lzfse);
    context.setSymmetricKey(key);
    context.setAuthData(keyRecord(key, *password, cost));
    check_();
    FileByteStream& file = destination.makeFile();
    const auto sealed = ArchiveByteStream::encryptionStream(file, context);
    packEntries(from, file, *sealed, total);
  }
  check_();
  destination.appear();
}

void ArchiveJob::packEntries(const std::string& source, FileByteStream& file,
                             ArchiveByteStream& over, std::uint64_t total) {
  struct stat status {};
  if (!FileCalls::system()->status(file.number(), status)) throwUnopened(errno, source);
  ArchiveStream::PackingOptions options;
  options.leftOut = {status.st_dev, status.st_ino};
  options.advance = [this, total](std::uint64_t bytes) {
    check_();
    report(bytes, total);
  };
  const auto entries = ArchiveStream::encodeStream(over);
  entries->writeDirectoryContents(source, ArchiveHeader::FieldKeySet(kFieldKeys), options);
  entries->close();
  over.close();
  file.close();
}

void ArchiveJob::extract(const NSURL& source, const NSURL& to,
                         const std::optional<NSData>& password) {
  const std::string from = pathOf(source, FileWork::Read);
  Destination destination(pathOf(to, FileWork::Write));
  const std::unique_ptr<FileByteStream> file = openArchive(from);
  const std::string magic = magicOf(*file, from);
  const bool isProtected = magic == kSealedMagic;
  if (isProtected && (!password || password->length() == 0))
    throwFoundationError(FoundationError::archiveRequiresPassword);
  if (!isProtected && password)
    throw ArchiveError(ArchiveErrorNotProtected,
                       "A password was given, and the archive is not protected.");
  report(0, file->length());
  extractEntries(*file, magic, password, destination.makeFolder());
  check_();
  destination.appear();
}

void ArchiveJob::extractEntries(FileByteStream& file, std::string_view magic,
                                const std::optional<NSData>& password, const std::string& folder) {
  if (magic == kSealedMagic) {
    ArchiveEncryptionContext context(file);
    const auto opened = openSealed(file, context, *password);
    return processEntries(file, *opened, folder);
  }
  if (magic.starts_with(kBlockMagic)) {
    const auto unpacked = ArchiveByteStream::decompressionStream(file);
    return processEntries(file, *unpacked, folder);
  }
  if (std::find(kEntryMagics.begin(), kEntryMagics.end(), magic) == kEntryMagics.end())
    throw ArchiveError(ArchiveErrorDamaged, "The file is no archive.");
  processEntries(file, file, folder);
}

void ArchiveJob::processEntries(FileByteStream& file, ArchiveByteStream& over,
                                const std::string& folder) {
  ArchiveStream::ExtractionOptions options;
  options.keepsOwners = options_.keepsOwners;
  options.keepsSetIDBits = options_.keepsSetIDBits;
  options.mostEntries = options_.mostEntries;
  options.mostBytes = options_.mostBytes;
  options.advance = [this, &file] {
    check_();
    report(file.position(), file.length());
  };
  std::shared_ptr<const NSError> error;
  const auto target = ArchiveStream::extractStream(folder, options, &error);
  if (!target) throwFoundationError(FoundationError::nilUnwrappedOptional, error);
  const auto entries = ArchiveStream::decodeStream(over);
  ArchiveStream::process(*entries, *target, options);
  target->close();
  report(file.length(), file.length());
}

}  // namespace ORLFoundation::internal::archives
