#include <ORLFoundation/support/internal/PathPrefix.h>
#include <unicode/unistr.h>
#include <unicode/unorm.h>

namespace ORLFoundation::internal {
namespace {

std::u16string unitsOf(std::string_view utf8) {
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(utf8.data(), static_cast<std::int32_t>(utf8.size())));
  return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

}  // namespace

PathPrefix::PathPrefix(std::string_view utf8) : units_(unitsOf(utf8)) {}

bool PathPrefix::isBefore(const PathPrefix& other) const {
  if (units_.size() != other.units_.size()) return units_.size() > other.units_.size();
  UErrorCode status = U_ZERO_ERROR;
  const auto length = static_cast<std::int32_t>(units_.size());
  const std::int32_t order = ::unorm_compare(units_.data(), length, other.units_.data(), length,
                                             U_COMPARE_CODE_POINT_ORDER, &status);
  return U_SUCCESS(status) ? order < 0 : units_ < other.units_;
}

}  // namespace ORLFoundation::internal
