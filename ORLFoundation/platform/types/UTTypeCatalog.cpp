

#include <ORLFoundation/platform/types/UTTypeCatalog.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

std::optional<UTTypeRecord> firstOf(const std::vector<UTTypeRecord>& records, auto&& fits) {
  const auto found = std::ranges::find_if(records, fits);
  return found == records.end() ? std::nullopt : std::optional(*found);
}

bool holds(const std::vector<std::string>& list, std::string_view text) {
  return std::ranges::find(list, text) != list.end();
}

}  // namespace

UTTypeTable::UTTypeTable(std::vector<UTTypeRecord> records) : records_(std::move(records)) {}

std::optional<UTTypeRecord> UTTypeTable::recordWithIdentifier(std::string_view identifier) const {
  return firstOf(records_, [&](const auto& record) { return record.identifier == identifier; });
}

std::optional<UTTypeRecord> UTTypeTable::recordWithFilenameExtension(
    std::string_view filenameExtension) const {
  return firstOf(records_, [&](const auto& record) {
    return holds(record.filenameExtensions, filenameExtension);
  });
}

std::optional<UTTypeRecord> UTTypeTable::recordWithMIMEType(std::string_view mimeType) const {
  return firstOf(records_, [&](const auto& record) { return holds(record.mimeTypes, mimeType); });
}

}  // namespace ORLFoundation
