

#include <ORLFoundation/support/plist/PlistDictionary.h>

#include <utility>

namespace ORLFoundation {

std::optional<PlistDictionary> PlistDictionary::initWithValues(
    const std::shared_ptr<NSDictionary>& values) {
  if (!values || !values->isPropertyList()) return std::nullopt;
  PlistDictionary dictionary;
  for (auto& [key, value] : values->entries()) dictionary.values_[*key.get<std::string>()] = value;
  return dictionary;
}

std::shared_ptr<NSDictionary> PlistDictionary::dictionary() const {
  return std::make_shared<NSDictionary>(NSDictionary::Entries(values_.begin(), values_.end()));
}

const id* PlistDictionary::find(std::string_view name) const {
  const auto found = values_.find(name);
  return found == values_.end() ? nullptr : &found->second;
}

void PlistDictionary::set(const std::string& name, id value) {
  if (value.isNil()) return remove(name);
  values_.insert_or_assign(name, std::move(value));
}

}  // namespace ORLFoundation
