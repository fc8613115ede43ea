#include <ORLFoundation/platform/xml/internal/AttributeDictionary.h>

#include <ORLFoundation/platform/object/NSEnumerator.h>

#include <algorithm>

namespace ORLFoundation::internal::xml {

void AttributeDictionary::clear() noexcept {
  text_.clear();
  attributes_.clear();
}

void AttributeDictionary::add(std::string_view prefix, std::string_view localName,
                              std::string_view value) {
  Attribute added;
  added.name = text_.size();
  if (!prefix.empty()) text_.append(prefix).push_back(':');
  text_.append(localName);
  added.value = text_.size();
  text_.append(value);
  added.end = text_.size();
  attributes_.push_back(added);
}

bool AttributeDictionary::has(std::string_view prefix, std::string_view localName) const noexcept {
  return std::ranges::any_of(attributes_, [&](const Attribute& attribute) {
    const std::string_view name = nameOf(attribute);
    return name.size() == prefix.size() + 1 + localName.size() && name.starts_with(prefix) &&
           name[prefix.size()] == ':' && name.ends_with(localName);
  });
}

std::string_view AttributeDictionary::nameOf(const Attribute& attribute) const noexcept {
  return std::string_view(text_).substr(attribute.name, attribute.value - attribute.name);
}

std::string_view AttributeDictionary::valueOf(const Attribute& attribute) const noexcept {
  return std::string_view(text_).substr(attribute.value, attribute.end - attribute.value);
}

id AttributeDictionary::objectForKey(const id& key) const {
  const auto* name = key.get<std::string>();
  if (name == nullptr) return nullptr;
  for (const Attribute& attribute : attributes_)
    if (nameOf(attribute) == *name) return valueOf(attribute);
  return nullptr;
}

NSDictionary::Entries AttributeDictionary::entries() const {
  Entries all;
  all.reserve(attributes_.size());
  for (const Attribute& attribute : attributes_)
    all.emplace_back(nameOf(attribute), valueOf(attribute));
  return all;
}

std::shared_ptr<NSEnumerator> AttributeDictionary::keyEnumerator() const {
  return NSEnumerator::enumeratorWithObjects(allKeys());
}

NSUInteger AttributeDictionary::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                            std::span<id> objects) const {
  state.requireUnchanged(*this, 0);
  NSUInteger filled = 0;
  for (; state.position < attributes_.size() && filled < objects.size(); ++state.position)
    objects[filled++] = nameOf(attributes_[state.position]);
  return filled;
}

}  // namespace ORLFoundation::internal::xml
