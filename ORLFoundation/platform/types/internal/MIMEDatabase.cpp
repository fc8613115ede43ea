

#include <ORLFoundation/platform/types/internal/MIMEDatabase.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <utility>

namespace ORLFoundation::internal::types {
namespace {

constexpr std::streamoff kMostBytes = 16 << 20;

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file.tellg();
  if (!file || size > kMostBytes) return {};
  std::string content(static_cast<std::size_t>(std::max<std::streamoff>(size, 0)), '\0');
  file.seekg(0);
  file.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(file.gcount()));
  return content;
}

/// Calls for each line that is not empty and no remark.
template <class Use>
void forEachLine(std::string_view text, Use&& use) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    if (!line.empty() && line.front() != '#') use(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

/// The two words of a line; empty ones when there are not two.
std::pair<std::string, std::string> twoWords(std::string_view line) {
  const std::size_t blank = line.find(' ');
  if (blank == line.npos || blank == 0 || blank + 1 == line.size()) return {};
  return {std::string(line.substr(0, blank)), std::string(line.substr(blank + 1))};
}

std::vector<std::string> listIn(const auto& lists, std::string_view name) {
  const auto found = lists.find(name);
  return found == lists.end() ? std::vector<std::string>() : found->second;
}

void addOnce(std::vector<std::string>& list, const std::string& text) {
  if (std::ranges::find(list, text) == list.end()) list.push_back(text);
}

}  // namespace

void MIMEDatabase::addFolder(const std::string& folder) {
  add(contentOf(folder + "/globs2"), contentOf(folder + "/subclasses"),
      contentOf(folder + "/aliases"));
}

void MIMEDatabase::add(std::string_view globs2, std::string_view subclasses,
                       std::string_view aliases) {
  std::map<std::string, Match, std::less<>> matches;
  forEachLine(globs2, [&](std::string_view line) { addGlob(line, matches); });
  // What is known already stays.
  typeOfExtension_.merge(matches);
  forEachLine(subclasses, [this](std::string_view line) {
    auto [name, parent] = twoWords(line);
    if (name.empty()) return;
    addOnce(parents_[name], parent);
    names_.insert({name, parent});
  });
  forEachLine(aliases, [this](std::string_view line) {
    auto [alias, name] = twoWords(line);
    if (alias.empty() || alias == name) return;
    names_.insert(name);
    nameOfAlias_.try_emplace(std::move(alias), std::move(name));
  });
}

// weight:type:*.extension[:flags]
void MIMEDatabase::addGlob(std::string_view line,
                           std::map<std::string, Match, std::less<>>& matches) {
  int weight = 0;
  const auto [rest, error] = std::from_chars(line.data(), line.data() + line.size(), weight);
  line.remove_prefix(static_cast<std::size_t>(rest - line.data()));
  if (error != std::errc() || !line.starts_with(':')) return;
  line.remove_prefix(1);
  const std::size_t colon = line.find(':');
  if (colon == line.npos || colon == 0) return;
  const std::string mimeType(line.substr(0, colon));
  const std::string_view glob = line.substr(colon + 1, line.find(':', colon + 1) - colon - 1);
  names_.insert(mimeType);
  if (!glob.starts_with("*.") || glob.size() == 2 || glob.find_first_of("*?[", 1) != glob.npos)
    return;
  const std::string extension = base::lowerASCII(glob.substr(2));
  addOnce(extensions_[mimeType], extension);
  const auto [place, isNew] = matches.try_emplace(extension, Match{weight, mimeType});
  if (!isNew && place->second.weight < weight) place->second = {weight, mimeType};
}

std::optional<std::string> MIMEDatabase::typeOfExtension(std::string_view extension) const {
  const auto found = typeOfExtension_.find(extension);
  return found == typeOfExtension_.end() ? std::nullopt : std::optional(found->second.mimeType);
}

std::vector<std::string> MIMEDatabase::extensionsOf(std::string_view mimeType) const {
  return listIn(extensions_, mimeType);
}

std::vector<std::string> MIMEDatabase::parentsOf(std::string_view mimeType) const {
  return listIn(parents_, mimeType);
}

std::string MIMEDatabase::nameOf(std::string_view mimeType) const {
  const auto found = nameOfAlias_.find(mimeType);
  // A type of its own is no alias, whatever the file of aliases says.
  if (found == nameOfAlias_.end() || knows(mimeType)) return std::string(mimeType);
  return found->second;
}

bool MIMEDatabase::knows(std::string_view mimeType) const { return names_.contains(mimeType); }

}  // namespace ORLFoundation::internal::types
