/// The attributes of one start tag. All names and values lie in one text, one after the other, so
/// that an element costs no memory of its own while nobody keeps its attributes.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::xml {

class AttributeDictionary final : public NSDictionary {
 public:
  /// Only while no one else holds the dictionary. The names must differ.
  void clear() noexcept;
  /// The prefix is empty for a name without one, which then is the local name.
  void add(std::string_view prefix, std::string_view localName, std::string_view value);
  /// Of a name with a prefix.
  [[nodiscard]] bool has(std::string_view prefix, std::string_view localName) const noexcept;

  [[nodiscard]] NSUInteger count() const noexcept override { return attributes_.size(); }
  [[nodiscard]] id objectForKey(const id& key) const override;
  [[nodiscard]] Entries entries() const override;
  [[nodiscard]] std::shared_ptr<NSEnumerator> keyEnumerator() const override;
  NSUInteger countByEnumeratingWithState(NSFastEnumerationState& state,
                                         std::span<id> objects) const override;

 private:
  struct Attribute {
    std::size_t name = 0;   // where it begins in `text_`
    std::size_t value = 0;  // where the name ends
    std::size_t end = 0;
  };
  [[nodiscard]] std::string_view nameOf(const Attribute& attribute) const noexcept;
  [[nodiscard]] std::string_view valueOf(const Attribute& attribute) const noexcept;

  std::string text_;
  std::vector<Attribute> attributes_;
};

}  // namespace ORLFoundation::internal::xml
