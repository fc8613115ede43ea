#include <ORLFoundation/platform/xml/internal/ExpansionBudget.h>

#include <algorithm>

namespace ORLFoundation::internal::xml {
namespace {

/// Of each reference, so that those to empty entities come to an end too.
constexpr NSUInteger kReference = 16;
/// So many comparisons of attributes of a tag, or of bytes of declarations, take as long as a byte.
constexpr NSUInteger kPairsOfAttributes = 64;
constexpr NSUInteger kPairsOfDeclaredBytes = 8192;
constexpr NSUInteger kFreeDefaults = 64;

NSUInteger costBeyondFree(const DefaultAttributes& defaults) noexcept {
  const NSUInteger cost = defaults.count * defaults.count / kPairsOfAttributes + defaults.length;
  return cost - std::min(cost, kFreeDefaults);
}

}  // namespace

bool ExpansionBudget::takeEntity(std::string_view text,
                                 const DefaultAttributes& defaults) noexcept {
  const auto tags = static_cast<NSUInteger>(std::ranges::count(text, '<'));
  return take(kReference + text.size() + tags * costBeyondFree(defaults));
}

bool ExpansionBudget::takeDeclarations(std::string_view text) noexcept {
  return take(kReference + text.size() + text.size() * text.size() / kPairsOfDeclaredBytes);
}

bool ExpansionBudget::takeDefaults(const DefaultAttributes& defaults) noexcept {
  return take(costBeyondFree(defaults));
}

bool ExpansionBudget::take(NSUInteger cost) noexcept {
  if (cost > left_) return false;
  left_ -= cost;
  return true;
}

}  // namespace ORLFoundation::internal::xml
