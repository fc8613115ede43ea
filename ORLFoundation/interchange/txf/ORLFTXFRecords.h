/// The records that a TXF writer takes, a member for each label of its operations. Texts are views
/// that must live through the call.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <optional>
#include <string_view>

namespace ORLFoundation {

/// One amount of a tax form, with what it was for.
struct ORLFTXFDetail {
  NSInteger taxFormCopy = 0;
  NSInteger lineNumber = 0;
  /// Printed by its description.
  id refNumber = nullptr;
  std::optional<NSNumber> amount = std::nullopt;
  std::optional<NSDate> detailDate = std::nullopt;
  std::optional<std::string_view> detailAccount = std::nullopt;
  std::optional<std::string_view> detailCheckNumber = std::nullopt;
  std::optional<std::string_view> detailPayee = std::nullopt;
  std::optional<std::string_view> detailMemo = std::nullopt;
  std::optional<std::string_view> detailCategory = std::nullopt;
};

/// A sale of shares.
struct ORLFTXFCapitalGains {
  std::optional<std::string_view> securityName = std::nullopt;
  NSInteger taxFormCopy = 0;
  NSInteger lineNumber = 0;
  std::optional<NSNumber> shares = std::nullopt;
  std::optional<NSNumber> costBasis = std::nullopt;
  std::optional<NSNumber> grossProceeds = std::nullopt;
  std::optional<NSDate> purchaseDate = std::nullopt;
  std::optional<NSDate> saleDate = std::nullopt;
};

}  // namespace ORLFoundation
