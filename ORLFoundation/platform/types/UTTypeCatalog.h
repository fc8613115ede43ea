/// Where types of files are looked up: the system's own catalog, or a table in memory for tests (an
/// empty one knows no type).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// What is known of a type of files.
struct UTTypeRecord {
  /// "public.png"; the MIME type where nothing else names the type.
  std::string identifier;
  /// Without a point, in lower case; the preferred one first.
  std::vector<std::string> filenameExtensions;
  std::vector<std::string> mimeTypes;
  /// Identifiers of the types right above.
  std::vector<std::string> conformsTo;
};

class UTTypeCatalog {
 public:
  virtual ~UTTypeCatalog() = default;

  /// nil for what the catalog does not know. Extensions and MIME types are given in lower case.
  /// Safe on any thread.
  [[nodiscard]] virtual std::optional<UTTypeRecord> recordWithIdentifier(
      std::string_view identifier) const = 0;
  [[nodiscard]] virtual std::optional<UTTypeRecord> recordWithFilenameExtension(
      std::string_view filenameExtension) const = 0;
  [[nodiscard]] virtual std::optional<UTTypeRecord> recordWithMIMEType(
      std::string_view mimeType) const = 0;
};

/// A list of types; the first that fits is taken.
class UTTypeTable final : public UTTypeCatalog {
 public:
  explicit UTTypeTable(std::vector<UTTypeRecord> records);

  [[nodiscard]] std::optional<UTTypeRecord> recordWithIdentifier(
      std::string_view identifier) const override;
  [[nodiscard]] std::optional<UTTypeRecord> recordWithFilenameExtension(
      std::string_view filenameExtension) const override;
  [[nodiscard]] std::optional<UTTypeRecord> recordWithMIMEType(
      std::string_view mimeType) const override;

 private:
  std::vector<UTTypeRecord> records_;
};

}  // namespace ORLFoundation
