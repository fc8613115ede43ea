
#include <ORLFoundation/platform/types/UTTypeSystemCatalog.h>

#include <ORLFoundation/platform/types/internal/BuiltInTypes.h>
#include <ORLFoundation/platform/types/internal/MIMEDatabase.h>

#include <array>
#include <cstdlib>
#include <sstream>
#include <utility>

namespace ORLFoundation {
namespace {

std::string environment(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : otherwise;
}

struct FamilyParent {
  std::string_view prefix, parent;
};
/// What types of a family are beside what the database says.
constexpr std::array kFamilyParents{
    FamilyParent{"text/", "public.plain-text"}, FamilyParent{"image/", "public.image"},
    FamilyParent{"audio/", "public.audio"},     FamilyParent{"video/", "public.movie"},
    FamilyParent{"inode/", "public.item"},
};

std::string_view parentOfFamily(std::string_view mimeType) {
  for (const FamilyParent& row : kFamilyParents)
    if (mimeType.starts_with(row.prefix)) return row.parent;
  return "public.data";
}

}  // namespace

UTTypeSystemCatalog::UTTypeSystemCatalog(std::vector<std::string> folders)
    : folders_(std::move(folders)) {}
UTTypeSystemCatalog::~UTTypeSystemCatalog() = default;

std::vector<std::string> UTTypeSystemCatalog::systemFolders() {
  std::vector<std::string> folders;
  const std::string home = environment("HOME", "");
  const std::string own = environment("XDG_DATA_HOME", home.empty() ? "" : home + "/.local/share");
  if (!own.empty()) folders.push_back(own + "/mime");
  std::istringstream list(environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
  for (std::string folder; std::getline(list, folder, ':');)
    if (!folder.empty()) folders.push_back(folder + "/mime");
  return folders;
}

const internal::types::MIMEDatabase& UTTypeSystemCatalog::database() const {
  std::call_once(wasRead_, [this] {
    database_ = std::make_unique<internal::types::MIMEDatabase>();
    for (const std::string& folder : folders_) database_->addFolder(folder);
  });
  return *database_;
}

std::optional<UTTypeRecord> UTTypeSystemCatalog::recordOfSystemType(
    std::string_view mimeType) const {
  if (auto declared = internal::types::builtInTypes().recordWithMIMEType(mimeType)) return declared;
  const std::string name = database().nameOf(mimeType);
  if (name != mimeType) return recordOfSystemType(name);
  if (!database().knows(name)) return std::nullopt;
  UTTypeRecord record{name, database().extensionsOf(name), {name}, {}};
  for (const std::string& parent : database().parentsOf(name)) {
    const auto declared = internal::types::builtInTypes().recordWithMIMEType(parent);
    record.conformsTo.push_back(declared ? declared->identifier : parent);
  }
  record.conformsTo.emplace_back(parentOfFamily(name));
  return record;
}

std::optional<UTTypeRecord> UTTypeSystemCatalog::recordWithIdentifier(
    std::string_view identifier) const {
  if (auto declared = internal::types::builtInTypes().recordWithIdentifier(identifier))
    return declared;
  return identifier.find('/') == identifier.npos ? std::nullopt : recordOfSystemType(identifier);
}

std::optional<UTTypeRecord> UTTypeSystemCatalog::recordWithFilenameExtension(
    std::string_view filenameExtension) const {
  if (auto declared =
          internal::types::builtInTypes().recordWithFilenameExtension(filenameExtension))
    return declared;
  const auto mimeType = database().typeOfExtension(filenameExtension);
  return mimeType ? recordOfSystemType(*mimeType) : std::nullopt;
}

std::optional<UTTypeRecord> UTTypeSystemCatalog::recordWithMIMEType(
    std::string_view mimeType) const {
  return recordOfSystemType(mimeType);
}

}  // namespace ORLFoundation
