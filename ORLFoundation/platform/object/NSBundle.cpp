#include <ORLFoundation/platform/object/NSBundle.h>

#include <utility>

namespace ORLFoundation {

const std::shared_ptr<NSBundle>& NSBundle::mainBundle() {
  static const auto bundle = std::make_shared<NSBundle>();
  return bundle;
}

std::string NSBundle::localizedStringForKey(std::string_view key, std::string_view value,
                                            std::optional<std::string_view> table) const {
  const std::lock_guard lock(lock_);
  if (const auto words = tables_.find(table.value_or("Localizable")); words != tables_.end()) {
    if (const auto word = words->second.find(key); word != words->second.end()) {
      return word->second;
    }
  }
  return std::string(value.empty() ? key : value);
}

void NSBundle::setLocalizedStrings(std::string_view table, Table words) {
  const std::lock_guard lock(lock_);
  tables_.insert_or_assign(std::string(table), std::move(words));
}

}  // namespace ORLFoundation
