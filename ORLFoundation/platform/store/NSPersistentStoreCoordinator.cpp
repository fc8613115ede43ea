#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/store/internal/StoreFile.h>

#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<NSStoreMetadataReader> readers;

}  // namespace

std::shared_ptr<NSDictionary> NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(
    std::string_view type, const NSURL& url, const std::shared_ptr<NSDictionary>& options,
    NSErrorSlot error) {
  if (const auto reader = readers.current()) return (*reader)(type, url, options, error);
  if (type != NSSQLiteStoreType) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSPersistentStoreInvalidTypeError,
                    std::string(type) + ": not a type of stores that can be read");
    return nullptr;
  }
  const auto path = internal::files::pathOfFileURL(url, internal::files::FileWork::Read, error);
  return path ? internal::store::StoreFile(*path).metadata(error) : nullptr;
}

NSStoreMetadataReader NSSetStoreMetadataReader(NSStoreMetadataReader reader) {
  return readers.exchange(std::move(reader));
}

}  // namespace ORLFoundation
