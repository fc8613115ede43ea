/// What a program brings along beside its code: here the words of its language, in tables that the
/// host installs.
///
///     NSBundle::mainBundle()->setLocalizedStrings("Localizable", {{"week", "Woche"}});
///     NSBundle::mainBundle()->localizedStringForKey("week", "", std::nullopt);  // "Woche"
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSBundle final : public NSObject {
 public:
  using Table = std::map<std::string, std::string, std::less<>>;

  /// `mainBundle`  The running program's; one for the process.
  [[nodiscard]] static const std::shared_ptr<NSBundle>& mainBundle();

  /// `localizedStringForKey:value:table:`  The word under a key of a table ("Localizable" for nil);
  /// where there is none the value, or the key itself when the value is empty. Safe on any thread.
  [[nodiscard]] std::string localizedStringForKey(std::string_view key, std::string_view value,
                                                  std::optional<std::string_view> table) const;
  /// Installs a table of words in place of the one of that name. Safe on any thread.
  void setLocalizedStrings(std::string_view table, Table words);

  [[nodiscard]] std::string className() const override { return "NSBundle"; }

 private:
  mutable std::mutex lock_;
  std::map<std::string, Table, std::less<>> tables_;
};

}  // namespace ORLFoundation
