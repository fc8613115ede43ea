/// The attributes of each tag as a dictionary: one for all tags, as long as nobody keeps it.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/xml/internal/AttributeDictionary.h>
#include <ORLFoundation/platform/xml/internal/ElementDeclarations.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::xml {

/// Texts of libxml2: up to its zero byte, empty for null; and between two places.
[[nodiscard]] inline std::string_view viewOf(const unsigned char* text) noexcept {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}
[[nodiscard]] inline std::string_view viewOf(const unsigned char* begin,
                                             const unsigned char* end) noexcept {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

class TagAttributes {
 public:
  /// Texts as libxml2 tells them. Of a namespace two: prefix, null for the default, and address.
  /// Of an attribute five: name, prefix or null, address, beginning and end of the value.
  using Texts = std::span<const unsigned char*>;
  static constexpr std::size_t kTextsOfANamespace = 2;
  static constexpr std::size_t kTextsOfAnAttribute = 5;

  /// A prefix that the next tag binds to nothing, which libxml2 leaves out of both.
  void addEmptyPrefix(std::string_view prefix) { emptyPrefixes_.emplace_back(prefix); }
  [[nodiscard]] std::size_t emptyPrefixCount() const noexcept { return emptyPrefixes_.size(); }

  /// Of the next tag, valid until the one after it. Whoever keeps it has it for good. null for a
  /// tag that binds a prefix to nothing and binds it once more: libxml2 does not see that.
  [[nodiscard]] const std::shared_ptr<NSDictionary>& dictionary(Texts namespaces, Texts attributes);
  /// Bytes of the longest value of attributes.
  [[nodiscard]] static std::size_t longestValue(Texts attributes) noexcept;
  /// The last `count` attributes, which are default ones.
  [[nodiscard]] static DefaultAttributes defaultsOf(Texts attributes, std::size_t count) noexcept;

 private:
  /// Of the `index`th attribute.
  [[nodiscard]] static std::string_view valueOf(Texts attributes, std::size_t index) noexcept {
    const std::size_t at = index * kTextsOfAnAttribute;
    return viewOf(attributes[at + 3], attributes[at + 4]);
  }
  void renew();

  std::vector<std::string> emptyPrefixes_;
  std::shared_ptr<NSDictionary> dictionary_;
  AttributeDictionary* fields_ = nullptr;  // the same
};

}  // namespace ORLFoundation::internal::xml
