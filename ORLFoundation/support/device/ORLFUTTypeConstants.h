/// The types of the files that personal-finance applications exchange.
///
///     if (conforms(*type, {kORLFUTTypeQFX, kORLFUTTypeOFX})) importStatement(file);
///
/// The constants are filled when the library is loaded, before the application's own code runs; a
/// constant of another source that is made of one calls the class property in its place.
#pragma once

#include <ORLFoundation/platform/types/UTType.h>

#include <initializer_list>
#include <memory>
#include <span>

namespace ORLFoundation {

/// The types by name. Each is looked up when it is asked for; a type that the system does not know
/// stops the process, naming it ("Can't find UTType with filenameExtension: qif").
// NOLINTNEXTLINE(bugprone-reserved-identifier): callers know it by this name.
class _ORLFUTTypeConstants {
 public:
  /// `qif`, `qmtf`, `qfx`, `txf`  By the extension of that name.
  [[nodiscard]] static std::shared_ptr<UTType> qif();
  [[nodiscard]] static std::shared_ptr<UTType> qmtf();
  [[nodiscard]] static std::shared_ptr<UTType> qfx();
  [[nodiscard]] static std::shared_ptr<UTType> txf();
  /// `ofx`  By the identifier "public.ofx"; stops with "Unknown UTType: public.ofx".
  [[nodiscard]] static std::shared_ptr<UTType> ofx();
  /// `csv`  The platform's type of comma-separated text, known to every system.
  [[nodiscard]] static std::shared_ptr<UTType> csv();
  /// `voucher`  Vouchers of subscriptions: a type of this library's own, without an extension.
  [[nodiscard]] static std::shared_ptr<UTType> voucher();
};

extern const std::shared_ptr<UTType> kORLFUTTypeQIF;
extern const std::shared_ptr<UTType> kORLFUTTypeQMTF;
extern const std::shared_ptr<UTType> kORLFUTTypeOFX;
extern const std::shared_ptr<UTType> kORLFUTTypeQFX;
extern const std::shared_ptr<UTType> kORLFUTTypeCSV;
extern const std::shared_ptr<UTType> kORLFUTTypeTXF;
extern const std::shared_ptr<UTType> kORLFUTTypeOrrelbooksSubscriptionVoucher;

/// The same types as extension properties of `UTType`: `UTTypes::qif()` and its siblings.
using UTTypes = _ORLFUTTypeConstants;

/// `conforms(to:)`  Whether the type conforms to at least one of the list, asked in order. false
/// for an empty list; nil in it is passed over.
[[nodiscard]] bool conforms(const UTType& type, std::span<const std::shared_ptr<UTType>> to);
[[nodiscard]] bool conforms(const UTType& type, std::initializer_list<std::shared_ptr<UTType>> to);

}  // namespace ORLFoundation
