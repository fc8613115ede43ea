/// The keys of plans and segments: for key-value access and observation, and the same in archives,
/// where they must not change.
#pragma once

#include <string_view>

namespace ORLFoundation::internal::amortization {

inline constexpr std::string_view kSegmentsKey = "segments";
inline constexpr std::string_view kEndDateKey = "endDate";

inline constexpr std::string_view kStartDateKey = "startDate";
inline constexpr std::string_view kAmortizationPlanKey = "amortizationPlan";
inline constexpr std::string_view kCurrentPrincipalKey = "currentPrincipal";
inline constexpr std::string_view kContributionKey = "contribution";
inline constexpr std::string_view kContributionFrequncyKey = "contributionFrequncy";
inline constexpr std::string_view kAnualCompoundingRateKey = "anualCompoundingRate";
inline constexpr std::string_view kCompoundingFrequncyKey = "compoundingFrequncy";
inline constexpr std::string_view kAnualInflationRateKey = "anualInflationRate";

}  // namespace ORLFoundation::internal::amortization
