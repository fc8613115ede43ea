/// The types that the library declares, and all that the system's shared MIME database knows beside
/// them. The library's own come first: a file that ends in .qif is one of accounts here, though the
/// system may take it for a picture. Where the system has no database they are all there is.
#pragma once

#include <ORLFoundation/platform/types/UTTypeCatalog.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

namespace internal::types {
class MIMEDatabase;
}  // namespace internal::types

class UTTypeSystemCatalog final : public UTTypeCatalog {
 public:
  /// A catalog of the databases in the folders ("/usr/share/mime"), of which an earlier one goes
  /// before a later one. They are read when a type is asked for that the library does not declare;
  /// what cannot be read is passed over.
  explicit UTTypeSystemCatalog(std::vector<std::string> folders);
  ~UTTypeSystemCatalog() override;
  /// The folders of the user and of the system, from XDG_DATA_HOME and XDG_DATA_DIRS.
  [[nodiscard]] static std::vector<std::string> systemFolders();

  [[nodiscard]] std::optional<UTTypeRecord> recordWithIdentifier(
      std::string_view identifier) const override;
  [[nodiscard]] std::optional<UTTypeRecord> recordWithFilenameExtension(
      std::string_view filenameExtension) const override;
  [[nodiscard]] std::optional<UTTypeRecord> recordWithMIMEType(
      std::string_view mimeType) const override;

 private:
  [[nodiscard]] const internal::types::MIMEDatabase& database() const;
  [[nodiscard]] std::optional<UTTypeRecord> recordOfSystemType(std::string_view mimeType) const;

  const std::vector<std::string> folders_;
  mutable std::once_flag wasRead_;
  mutable std::unique_ptr<internal::types::MIMEDatabase> database_;
};

}  // namespace ORLFoundation
