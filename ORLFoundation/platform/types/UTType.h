/// A type of files: known by an identifier, by the extensions of file names and by MIME types, and
/// standing under more general types.
///
///     const auto type = UTType::typeWithFilenameExtension("csv");
///     type->identifier();                                            // public.comma-separated-...
///     type->conformsToType(*UTType::typeWithIdentifier("public.text"));   // true
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/types/UTTypeCatalog.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class UTType final : public NSObject {
 public:
  /// `typeWithIdentifier:`  nil for an identifier that is not known.
  [[nodiscard]] static std::shared_ptr<UTType> typeWithIdentifier(std::string_view identifier);
  /// `typeWithFilenameExtension:`  Without the point, in either case; nil for one that is not
  /// known.
  [[nodiscard]] static std::shared_ptr<UTType> typeWithFilenameExtension(
      std::string_view filenameExtension);
  /// `typeWithMIMEType:`
  [[nodiscard]] static std::shared_ptr<UTType> typeWithMIMEType(std::string_view mimeType);
  /// `exportedTypeWithIdentifier:conformingToType:`  A type that the caller defines; it need not be
  /// known.
  [[nodiscard]] static std::shared_ptr<UTType> exportedTypeWithIdentifier(
      std::string_view identifier, std::string_view conformingToType);

  /// Where types are looked up from now on; null for the system's catalog. Gives back the catalog
  /// before it, null for the system's while no type has been looked up there. Safe on any thread.
  static std::shared_ptr<const UTTypeCatalog> setCatalog(
      std::shared_ptr<const UTTypeCatalog> catalog);

  [[nodiscard]] const std::string& identifier() const noexcept { return record_.identifier; }
  /// `preferredFilenameExtension`, `preferredMIMEType`  nil when there is none.
  [[nodiscard]] std::optional<std::string> preferredFilenameExtension() const;
  [[nodiscard]] std::optional<std::string> preferredMIMEType() const;
  /// `conformsToType:`  Whether this is the other type, or stands anywhere under it.
  [[nodiscard]] bool conformsToType(const UTType& type) const;

  [[nodiscard]] std::string className() const override { return "UTType"; }
  /// Equal identifiers.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// The identifier.
  [[nodiscard]] std::string description() const override { return identifier(); }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<UTType>(Passkey(), record_, catalog_); });
  }

 private:
  struct Passkey {};
  using Catalog = std::shared_ptr<const UTTypeCatalog>;

 public:
  UTType(Passkey, UTTypeRecord record, Catalog catalog);

 private:
  static std::shared_ptr<UTType> make(std::optional<UTTypeRecord> record, Catalog catalog);

  const UTTypeRecord record_;
  /// Where the types above are looked up.
  const Catalog catalog_;
};

}  // namespace ORLFoundation
