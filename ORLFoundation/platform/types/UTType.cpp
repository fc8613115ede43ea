
#include <ORLFoundation/platform/types/UTType.h>

#include <ORLFoundation/platform/types/UTTypeSystemCatalog.h>

#include <functional>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using Catalog = std::shared_ptr<const UTTypeCatalog>;

struct CurrentCatalog {
  std::mutex lock;
  Catalog catalog;
};

CurrentCatalog& current() {
  // Never destroyed: types may be asked for while the process ends.
  static auto& current = *new CurrentCatalog;
  return current;
}

Catalog currentCatalog() {
  const std::lock_guard guard(current().lock);
  if (!current().catalog)
    current().catalog =
        std::make_shared<const UTTypeSystemCatalog>(UTTypeSystemCatalog::systemFolders());
  return current().catalog;
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

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
  const Catalog catalog = currentCatalog();
  return make(catalog->recordWithIdentifier(identifier), catalog);
}

std::shared_ptr<UTType> UTType::typeWithFilenameExtension(std::string_view filenameExtension) {
  const Catalog catalog = currentCatalog();
  return make(catalog->recordWithFilenameExtension(lowerCase(filenameExtension)), catalog);
}

std::shared_ptr<UTType> UTType::typeWithMIMEType(std::string_view mimeType) {
  const Catalog catalog = currentCatalog();
  return make(catalog->recordWithMIMEType(lowerCase(mimeType)), catalog);
}

std::shared_ptr<UTType> UTType::exportedTypeWithIdentifier(std::string_view identifier,
                                                           std::string_view conformingToType) {
  return make(UTTypeRecord{std::string(identifier), {}, {}, {std::string(conformingToType)}},
              currentCatalog());
}

void UTType::setCatalog(std::shared_ptr<const UTTypeCatalog> catalog) {
  const std::lock_guard guard(current().lock);
  current().catalog.swap(catalog);
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
