/// What a document's own DTD says of its elements.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::xml {

/// Attributes that tags have though they do not write them.
struct DefaultAttributes {
  NSUInteger count = 0;
  NSUInteger length = 0;  // bytes of their values
};

class ElementDeclarations {
 public:
  void addThatHoldsElementsAlone(std::string_view element);
  [[nodiscard]] bool holdsElementsAlone(std::string_view element) const {
    return !holdElementsAlone_.empty() && holdElementsAlone_.contains(element);
  }
  /// What the element has with one more, of a value of so many bytes.
  const DefaultAttributes& addDefaultAttribute(std::string_view element, NSUInteger length);
  /// As many as no element has more of, and so many bytes of values, of one element or of several.
  [[nodiscard]] const DefaultAttributes& mostDefaults() const noexcept { return most_; }

 private:
  std::set<std::string, std::less<>> holdElementsAlone_;
  std::map<std::string, DefaultAttributes, std::less<>> defaultAttributes_;
  DefaultAttributes most_;
};

}  // namespace ORLFoundation::internal::xml
