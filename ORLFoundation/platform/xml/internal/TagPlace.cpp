#include <ORLFoundation/platform/xml/internal/TagPlace.h>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace ORLFoundation::internal::xml {

namespace {

/// How far a line's beginning is looked for where the tag's own end tells the column as well: of a
/// document in one line, all of it would be looked through for each tag.
constexpr std::size_t kNear = 256;

/// The distance from the line end before the tag, nil where it is lost or not within `reach`.
std::optional<NSInteger> distanceFromLineEnd(std::string_view before, std::size_t reach,
                                             bool whole) {
  const std::size_t begin = before.size() - std::min(before.size(), reach);
  const std::size_t lineEnd = before.substr(begin).rfind('\n');
  if (lineEnd != std::string_view::npos)
    return static_cast<NSInteger>(before.size() - begin - lineEnd);
  if (begin == 0 && whole) return static_cast<NSInteger>(before.size()) + 1;
  return std::nullopt;
}

}  // namespace

TagPlace beginningOfTag(std::string_view read, bool whole, TagPlace end) noexcept {
  const std::size_t begin = read.ends_with(';') ? std::string_view::npos : read.rfind('<');
  if (begin == std::string_view::npos) return end;
  const std::string_view before = read.substr(0, begin);
  const std::string_view tag = read.substr(begin);
  const auto lines = static_cast<NSInteger>(std::count(tag.begin(), tag.end(), '\n'));
  const bool isInOneLine = lines == 0;
  const auto column = distanceFromLineEnd(before, isInOneLine ? kNear : before.size(), whole);
  const NSInteger counted = isInOneLine ? end.column - static_cast<NSInteger>(tag.size()) : 1;
  return {end.line - lines, std::max<NSInteger>(column.value_or(counted), 1)};
}

}  // namespace ORLFoundation::internal::xml
