
#include <ORLFoundation/platform/types/UTType.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/types/UTTypeSystemCatalog.h>

#include <functional>
#include <set>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using Catalog = std::shared_ptr<const UTTypeCatalog>;

constinit internal::base::Replaceable<const UTTypeCatalog> catalogs([]() -> Catalog {
  return std::make_shared<const UTTypeSystemCatalog>(UTTypeSystemCatalog::systemFolders());
});

std::optional<std::string> firstOf(const std::vector<std::string>& list) {
  return list.empty() ? std::nullopt : std::optional(list.front());
}

}  // namespace

UTType::UTType(Passkey, UTTypeRecord record, Catalog catalog)
    : record_(std::move(record)), catalog_(std::move(catalog)) {}

std::shared_ptr<UTType> UTType::make(std::optional<UTTypeRecord> record, Catalog catalog) {
  if (!record) return nullptr;
  return std::make_shared<UTType>(Passkey(), *std::move(record), std::move(catalog));
}

std::shared_ptr<UTType> UTType::typeWithIdentifier(std::string_view identifier) {
  const Catalog catalog = catalogs.current();
  return make(catalog->recordWithIdentifier(identifier), catalog);
}

std::shared_ptr<UTType> UTType::typeWithFilenameExtension(std::string_view filenameExtension) {
  const Catalog catalog = catalogs.current();
  return make(catalog->recordWithFilenameExtension(internal::base::lowerASCII(filenameExtension)),
              catalog);
}

std::shared_ptr<UTType> UTType::typeWithMIMEType(std::string_view mimeType) {
  const Catalog catalog = catalogs.current();
  return make(catalog->recordWithMIMEType(internal::base::lowerASCII(mimeType)), catalog);
}

std::shared_ptr<UTType> UTType::exportedTypeWithIdentifier(std::string_view identifier,
                                                           std::string_view conformingToType) {
  return make(UTTypeRecord{std::string(identifier), {}, {}, {std::string(conformingToType)}},
              catalogs.current());
}

std::shared_ptr<const UTTypeCatalog> UTType::setCatalog(
    std::shared_ptr<const UTTypeCatalog> catalog) {
  return catalogs.exchange(std::move(catalog));
}

std::optional<std::string> UTType::preferredFilenameExtension() const {
  return firstOf(record_.filenameExtensions);
}

std::optional<std::string> UTType::preferredMIMEType() const { return firstOf(record_.mimeTypes); }

bool UTType::conformsToType(const UTType& type) const {
  std::set<std::string> seen{identifier()};
  std::vector<std::string> waiting = record_.conformsTo;
  if (identifier() == type.identifier()) return true;
  while (!waiting.empty()) {
    const std::string name = std::move(waiting.back());
    waiting.pop_back();
    if (name == type.identifier()) return true;
    if (!seen.insert(name).second) continue;
    const auto record = catalog_->recordWithIdentifier(name);
    if (record) waiting.insert(waiting.end(), record->conformsTo.begin(), record->conformsTo.end());
  }
  return false;
}

bool UTType::isEqual(const NSObject* other) const {
  const auto* type = dynamic_cast<const UTType*>(other);
  return type && type->identifier() == identifier();
}

NSUInteger UTType::hash() const { return std::hash<std::string>{}(identifier()); }

}  // namespace ORLFoundation
