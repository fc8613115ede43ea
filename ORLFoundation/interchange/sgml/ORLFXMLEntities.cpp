#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>

#include <ORLFoundation/interchange/sgml/internal/ORLFEntityText.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using namespace internal::sgml;

/// Plain texts and what stands for them.
using Table = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view kAmpersand = "&";
constexpr std::string_view kAmpersandEntity = "&amp;";

std::string textOf(const id& entry) {
  if (const auto* text = entry.get<std::string>()) return *text;
  throw NSException(NSInvalidArgumentException, "Entities are texts under texts.");
}

Table tableWith(const std::shared_ptr<NSDictionary>& entities) {
  Table table{{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}};
  if (entities == nullptr) return table;
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
  std::string result;
  result.reserve(string.size());
  appendEscaped(result, string);
  return result;
}

std::string orlfStringByUnescapingEntities(std::string_view string,
                                           const std::shared_ptr<NSDictionary>& entities) {
  std::string result(string);
  for (const auto& [plain, entity] : tableWith(entities))
    result = replacing(std::move(result), entity, plain);
  return replacing(std::move(result), kAmpersandEntity, kAmpersand);
}

std::string orlfStringByUnescapingStandardXMLEntities(std::string_view string) {
  return orlfStringByUnescapingEntities(string, nullptr);
}

}  // namespace ORLFoundation
