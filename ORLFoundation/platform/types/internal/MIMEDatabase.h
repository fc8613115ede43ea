/// What the files of a shared MIME database say: the extensions of each type, the types above it,
/// and its other names.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::types {

class MIMEDatabase {
 public:
  /// Adds what the files globs2, subclasses and aliases of a folder say, beneath what is known.
  /// Lines that cannot be read are passed over, as is a file of more than 16 MB.
  void addFolder(const std::string& folder);
  /// The same for the texts of the files.
  void add(std::string_view globs2, std::string_view subclasses, std::string_view aliases);

  /// The type of the pattern with the greatest weight, the first of these; nil for an extension
  /// without a pattern of its own.
  [[nodiscard]] std::optional<std::string> typeOfExtension(std::string_view extension) const;
  /// In the order of their patterns.
  [[nodiscard]] std::vector<std::string> extensionsOf(std::string_view mimeType) const;
  [[nodiscard]] std::vector<std::string> parentsOf(std::string_view mimeType) const;
  /// The name that the database calls a type by; the name given when it is no other's.
  [[nodiscard]] std::string nameOf(std::string_view mimeType) const;
  /// Whether any file names the type.
  [[nodiscard]] bool knows(std::string_view mimeType) const;

 private:
  struct Match {
    int weight = 0;
    std::string mimeType;
  };
  using Lists = std::map<std::string, std::vector<std::string>, std::less<>>;

  void addGlob(std::string_view line, std::map<std::string, Match, std::less<>>& matches);

  std::map<std::string, Match, std::less<>> typeOfExtension_;
  Lists extensions_, parents_;
  std::map<std::string, std::string, std::less<>> nameOfAlias_;
  std::set<std::string, std::less<>> names_;
};

}  // namespace ORLFoundation::internal::types
