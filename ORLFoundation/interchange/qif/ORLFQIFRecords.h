/// The records that a QIF writer takes, a member for each label of its operations. Texts are views
/// that must live through the call. What is nil is left out of the record, but for what it cannot
/// do without, where nil reads "(null)".
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// How far a transaction is cleared; other values write no line.
enum ORLFQIFClearedState : std::int32_t {
  ORLFQIFNotCleared = 0,
  ORLFQIFCleared = 1,
  ORLFQIFReconciled = 2,
};

/// An account. Balance, credit limit and sales tax rate are printed by their descriptions.
struct ORLFQIFAccount {
  std::optional<std::string_view> name = std::nullopt;
  std::int32_t type = 0;
  /// Left out when it is empty, too.
  std::optional<std::string_view> description = std::nullopt;
  id balance = nullptr;
  id creditLimit = nullptr;
  id salesTaxRate = nullptr;
};

/// A category. The type is 0 or 2 for an expense, 1 for income; another one writes no line.
struct ORLFQIFCategory {
  std::optional<std::string_view> name = std::nullopt;
  std::int64_t type = 0;
  /// Left out when it is empty, too.
  std::optional<std::string_view> description = std::nullopt;
  bool taxible = false;
  id taxCode = nullptr;
};

/// A transaction of an account that holds no securities. An account makes it a transfer.
struct ORLFQIFTransaction {
  /// nil counts as zero.
  std::optional<NSNumber> amount = std::nullopt;
  std::optional<NSDate> date = std::nullopt;
  std::int32_t cleared = ORLFQIFNotCleared;
  std::optional<std::string_view> refNum = std::nullopt;
  std::optional<std::string_view> payee = std::nullopt;
  std::optional<std::string_view> memo = std::nullopt;
  /// Taken, and written nowhere.
  std::optional<std::string_view> address = std::nullopt;
  std::optional<std::string_view> account = std::nullopt;
  std::optional<std::string_view> category = std::nullopt;
  std::vector<std::string> tags = {};
};

/// A part of a transaction. It is written with the opposite sign of the amount.
struct ORLFQIFSplitItem {
  /// nil counts as zero.
  std::optional<NSDecimalNumber> amount = std::nullopt;
  std::optional<std::string_view> memo = std::nullopt;
  std::optional<std::string_view> account = std::nullopt;
  std::optional<std::string_view> category = std::nullopt;
  std::vector<std::string> tags = {};
};

/// A transaction in securities, as its lines stand.
struct ORLFQIFRawInvestment {
  std::int32_t type = 0;
  std::optional<std::string_view> security = std::nullopt;
  std::optional<NSDate> date = std::nullopt;
  std::optional<NSNumber> price = std::nullopt;
  std::optional<NSNumber> qField = std::nullopt;
  std::optional<NSNumber> commission = std::nullopt;
  std::optional<NSNumber> transactionAmount = std::nullopt;
  std::int32_t cleared = ORLFQIFNotCleared;
  std::optional<std::string_view> payee = std::nullopt;
  std::optional<std::string_view> memo = std::nullopt;
  id lField = nullptr;
  /// Printed by its description: 1234.5 stays "1234.5" in every locale.
  id lFieldAmount = nullptr;
};

/// A transaction in securities. Its category is written nowhere; account and amount belong to
/// transfers.
struct ORLFQIFInvestment {
  std::int32_t type = 0;
  std::optional<std::string_view> security = std::nullopt;
  std::optional<NSDate> date = std::nullopt;
  std::optional<NSNumber> price = std::nullopt;
  std::optional<NSNumber> quantity = std::nullopt;
  std::optional<NSNumber> commission = std::nullopt;
  std::optional<NSNumber> transactionAmount = std::nullopt;
  std::int32_t cleared = ORLFQIFNotCleared;
  std::optional<std::string_view> payee = std::nullopt;
  std::optional<std::string_view> memo = std::nullopt;
  std::optional<std::string_view> category = std::nullopt;
  std::optional<std::string_view> account = std::nullopt;
  /// Printed by its description.
  id transferAmount = nullptr;
};

/// A split of a security.
struct ORLFQIFInvestmentSplit {
  std::optional<std::string_view> security = std::nullopt;
  std::optional<NSDate> date = std::nullopt;
  std::optional<NSNumber> ratio = std::nullopt;
  std::int32_t cleared = ORLFQIFNotCleared;
  std::optional<std::string_view> memo = std::nullopt;
};

}  // namespace ORLFoundation
