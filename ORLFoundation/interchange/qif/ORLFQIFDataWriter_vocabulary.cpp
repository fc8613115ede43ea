#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>

#include <array>
#include <cstddef>

namespace ORLFoundation {
namespace {

constexpr std::array<std::string_view, 8> kAccountTypes{
    "Bank", "Cash", "CCard", "Invst", "MutualFund", "401k/403B", "Oth A", "Oth L"};

constexpr std::array<std::string_view, 37> kInvestmentActions{
    "Cash",      "Buy",        "BuyX",     "Sell",     "SellX",   "BuyToCover", "BuyToCoverX",
    "SellShort", "SellShortX", "CGLong",   "CGLongX",  "CGMid",   "CGMidX",     "CGShort",
    "CGShortX",  "Div",        "DivX",     "IntInc",   "IntIncX", "MargInt",    "MargIntX",
    "RtnCap",    "RtnCapX",    "ReinvDiv", "ReinvInt", "ReinvLg", "ReinvMd",    "ReinvSh",
    "ShrsIn",    "XIn",        "ShrsOut",  "XOut",     "MiscExp", "MiscExpX",   "MiscInc",
    "MiscIncX",  "StkSplit"};

constexpr std::array<std::string_view, 4> kSecurityTypes{"Stock", "Bond", "Mutual Fund", "CD"};

/// The word at a place; the one for other values beyond the last place and before the first.
template <std::size_t Count>
std::string wordAt(const std::array<std::string_view, Count>& words, std::int64_t place,
                   std::string_view otherwise) {
  const auto index = static_cast<std::uint64_t>(place);
  return std::string(index < Count ? words[index] : otherwise);
}

}  // namespace

std::string ORLFQIFDataWriter::stringForAccountType(std::int32_t type) {
  return wordAt(kAccountTypes, type, kAccountTypes.front());
}

std::string ORLFQIFDataWriter::stringForInvestmentAction(std::int32_t action) {
  return wordAt(kInvestmentActions, action, kInvestmentActions.front());
}

std::string ORLFQIFDataWriter::securityTypeNameFromType(std::int64_t type) {
  return wordAt(kSecurityTypes, type, "");
}

std::string ORLFQIFDataWriter::securityRiskNameFromRiskType(std::int64_t riskType) {
  return riskType == 0 ? "Growth" : "";
}

}  // namespace ORLFoundation
