#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>

#include <ORLFoundation/interchange/sgml/ORLFEntityText.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using namespace internal::sgml;

/// Plain texts and what stands for them.
using Table = std::vector<std::pair<std::string, std::string>>;

struct StandardEntry {
  std::string_view plain, entity;
};
constexpr std::array<StandardEntry, 4> kStandardTable{
    {{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}}};
constexpr StandardEntry kAmpersand = kStandardTable[0];

std::string textOf(const id& entry) {
  if (const auto* text = entry.get<std::string>()) return *text;
  throw NSException(NSInvalidArgumentException, "Entities are texts under texts.");
}

Table tableWith(const std::shared_ptr<NSDictionary>& entities) {
  Table table;
  for (const StandardEntry& entry : kStandardTable) table.emplace_back(entry.plain, entry.entity);
  for (const auto& [key, value] : entities->entries()) {
    const std::string plain = textOf(key);
    const auto isHere = [&plain](const auto& entry) { return entry.first == plain; };
    const auto found = std::find_if(table.begin(), table.end(), isHere);
    if (found == table.end())
      table.emplace_back(plain, textOf(value));
    else
      found->second = textOf(value);
  }
  return table;
}

/// Every occurrence of a text replaced, from left to right; an empty one occurs nowhere.
std::string replacing(std::string text, std::string_view target, std::string_view replacement) {
  std::size_t found = target.empty() ? text.npos : text.find(target);
  if (found == text.npos) return text;
  std::string result;
  result.reserve(text.size());
  std::size_t at = 0;
  for (; found != text.npos; found = text.find(target, at)) {
    result.append(text, at, found - at).append(replacement);
    at = found + target.size();
  }
  return result.append(text, at);
}

}  // namespace

std::string orlfStringByEscapingEntities(std::string_view string,
                                         const std::shared_ptr<NSDictionary>& entities) {
  if (entities == nullptr) return orlfStringByEscapingStandardXMLEntities(string);
  std::string result;
  appendWithoutControls(result, string);
  Table table = tableWith(entities);
  // The ampersand goes first: those of later entities stay. It is the table's first entry.
  for (const auto& [plain, entity] : table) result = replacing(std::move(result), plain, entity);
  return result;
}

std::string orlfStringByEscapingStandardXMLEntities(std::string_view string) {
  constexpr std::size_t kWithoutHeap = 15;
  std::string result;
  if (string.size() > kWithoutHeap) result.reserve(string.size() + string.size() / 4 + 16);
  appendEscaped(result, string);
  return result;
}

std::string orlfStringByUnescapingEntities(std::string_view string,
                                           const std::shared_ptr<NSDictionary>& entities) {
  if (entities == nullptr) return orlfStringByUnescapingStandardXMLEntities(string);
  std::string result(string);
  for (const auto& [plain, entity] : tableWith(entities))
    result = replacing(std::move(result), entity, plain);
  return replacing(std::move(result), kAmpersand.entity, kAmpersand.plain);
}

std::string orlfStringByUnescapingStandardXMLEntities(std::string_view string) {
  std::string result(string);
  unescape(result);
  return result;
}

}  // namespace ORLFoundation
