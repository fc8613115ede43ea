#include "interchange/column_map.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "values/trimmed.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using ORLFoundation::internal::base::equalsIgnoringCase;
using ORLFoundation::internal::base::isDigit;

constexpr std::int64_t kMostColumns = 1'000'000;

/// Calls a function with each part of a text.
template <class Take>
void forEachPart(std::string_view text, char separator, const Take& take) {
  for (;;) {
    const std::size_t end = std::min(text.find(separator), text.size());
    take(text.substr(0, end));
    if (end == text.size()) return;
    text.remove_prefix(end + 1);
  }
}

/// The only column with one of the headings; nil for none. Throws JobFailure for a second one.
std::optional<std::size_t> columnOf(std::string_view heading,
                                    std::span<const std::string_view> headings,
                                    const std::string& file) {
  std::optional<std::size_t> found;
  for (std::size_t column = 0; column < headings.size(); ++column) {
    if (!equalsIgnoringCase(trimmed(headings[column]), trimmed(heading))) continue;
    if (found)
      throw JobFailure(file + ": two columns have the heading " + quotedForMessage(heading) +
                       ": --map takes numbers, too");
    found = column;
  }
  return found;
}

std::string listOf(std::span<const std::string_view> headings) {
  constexpr std::size_t kMostShown = 20;
  std::string list;
  for (std::size_t at = 0; at < std::min(headings.size(), kMostShown); ++at)
    list += (list.empty() ? "" : ", ") + quotedForMessage(trimmed(headings[at]));
  return headings.size() > kMostShown ? list + ", ..." : list;
}

}  // namespace

ColumnMap::ColumnMap(std::span<const FieldRule> rules, const std::optional<std::string>& map)
    : rules_(rules), headings_(rules.size()), columns_(rules.size()), isMapped_(map.has_value()) {
  needsHeadings_ = !isMapped_;
  if (!map) return;
  forEachPart(*map, ',', [this](std::string_view word) { takeWord(std::string(trimmed(word))); });
  requireFields();
}

void ColumnMap::requireFields() const {
  for (std::size_t field = 0; field < rules_.size(); ++field)
    if (rules_[field].isRequired && !columns_[field] && headings_[field].empty())
      throw UsageFailure("--map: expected a column for " + std::string(rules_[field].name) +
                         ", got none");
}

std::size_t ColumnMap::fieldNamed(const std::string& name) const {
  const auto found = std::find_if(rules_.begin(), rules_.end(),
                                  [&name](const FieldRule& rule) { return rule.name == name; });
  if (found != rules_.end()) return static_cast<std::size_t>(found - rules_.begin());
  std::string names;
  for (const FieldRule& rule : rules_)
    names += (names.empty() ? "" : ", ") + std::string(rule.name);
  throw UsageFailure("--map: expected fields of " + names + ", got " + quotedForMessage(name));
}

void ColumnMap::takeWord(const std::string& word) {
  const std::size_t sign = word.find('=');
  const std::string column = sign == word.npos ? "" : std::string(trimmed(word.substr(sign + 1)));
  if (column.empty())
    throw UsageFailure("--map: expected a list such as date=1,payee=Description, got " +
                       quotedForMessage(word));
  const std::size_t field = fieldNamed(std::string(trimmed(word.substr(0, sign))));
  if (columns_[field] || !headings_[field].empty())
    throw UsageFailure("--map: " + std::string(rules_[field].name) + " is named twice");
  if (!std::all_of(column.begin(), column.end(), [](char c) { return isDigit(c); })) {
    headings_[field] = column;
    needsHeadings_ = true;
    return;
  }
  columns_[field] =
      static_cast<std::size_t>(readWholeArgument("--map", column, 1, kMostColumns)) - 1;
}

void ColumnMap::takeHeadings(std::span<const std::string_view> headings, const std::string& file) {
  for (std::size_t field = 0; field < rules_.size(); ++field) {
    if (isMapped_ && headings_[field].empty()) continue;
    if (isMapped_) {
      columns_[field] = columnOf(headings_[field], headings, file);
      if (!columns_[field])
        throw JobFailure(file + ": no column has the heading " +
                         quotedForMessage(headings_[field]) + "; there are " + listOf(headings));
      continue;
    }
    forEachPart(rules_[field].headings, '|', [&](std::string_view heading) {
      if (!columns_[field]) columns_[field] = columnOf(heading, headings, file);
    });
    if (rules_[field].isRequired && !columns_[field])
      throw JobFailure(file + ": no column is known for " + std::string(rules_[field].name) +
                       "; there are " + listOf(headings) + ": --map names columns");
  }
}

std::string_view ColumnMap::text(std::size_t field, std::span<const std::string_view> row) const {
  const std::optional<std::size_t>& column = columns_.at(field);
  return column && *column < row.size() ? row[*column] : std::string_view();
}

}  // namespace orlftool
