/// An error record: a domain, a code in it, and what else is known under text keys. Records never
/// change. An operation that can fail takes a slot as its last argument:
///
///     std::shared_ptr<const NSError> error;
///     if (!store->open(url, &error)) show(error->localizedDescription());
///
/// A slot is filled only on failure; whoever gives no slot hears only that the operation failed.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";
inline constexpr std::string_view NSURLErrorDomain = "NSURLErrorDomain";
inline constexpr std::string_view NSPOSIXErrorDomain = "NSPOSIXErrorDomain";
inline constexpr std::string_view ORLFErrorDomain = "ORLFErrorDomain";
inline constexpr std::string_view ORLFSecurityErrorDomain = "ORLFSecurityErrorDomain";

// Keys of the user information.
inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr std::string_view NSLocalizedFailureReasonErrorKey = "NSLocalizedFailureReason";
inline constexpr std::string_view NSLocalizedRecoverySuggestionErrorKey =
    "NSLocalizedRecoverySuggestion";
inline constexpr std::string_view NSLocalizedRecoveryOptionsErrorKey = "NSLocalizedRecoveryOptions";
inline constexpr std::string_view NSRecoveryAttempterErrorKey = "NSRecoveryAttempter";
inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";
inline constexpr std::string_view NSFilePathErrorKey = "NSFilePath";
inline constexpr std::string_view NSURLErrorKey = "NSURL";

class NSError final : public NSObject {
 public:
  /// `initWithDomain:code:userInfo:`  nil stands for no user information.
  NSError(std::string_view domain, NSInteger code,
          std::shared_ptr<NSDictionary> userInfo = nullptr);
  /// `errorWithDomain:code:userInfo:`
  [[nodiscard]] static std::shared_ptr<NSError> errorWithDomain(
      std::string_view domain, NSInteger code, std::shared_ptr<NSDictionary> userInfo = nullptr);

  [[nodiscard]] const std::string& domain() const noexcept { return domain_; }
  [[nodiscard]] NSInteger code() const noexcept { return code_; }
  /// Never null.
  [[nodiscard]] const std::shared_ptr<NSDictionary>& userInfo() const noexcept { return userInfo_; }
  /// `localizedDescription`  The text under `NSLocalizedDescriptionKey`, else "The operation
  /// couldn’t be completed. (ORLFErrorDomain error 1.)".
  [[nodiscard]] std::string localizedDescription() const;

  [[nodiscard]] std::string className() const override { return "NSError"; }
  /// Equal domains, codes and user information.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// "Error Domain=ORLFErrorDomain Code=1 "text" UserInfo={key=value}".
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<NSError>(domain_, code_, userInfo_); });
  }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  const std::string domain_;
  const NSInteger code_;
  const std::shared_ptr<NSDictionary> userInfo_;
};

/// Where an operation leaves the record of its failure; null when the caller does not want it.
using NSErrorSlot = std::shared_ptr<const NSError>*;

/// Puts the error into the slot, if there is one. Answers false, which the failing operation may
/// return at once.
bool NSFillErrorSlot(NSErrorSlot slot, std::shared_ptr<const NSError> error);
/// The same with a record of a domain, a code and a text for people.
bool NSFillErrorSlot(NSErrorSlot slot, std::string_view domain, NSInteger code,
                     std::string_view localizedDescription);

}  // namespace ORLFoundation
