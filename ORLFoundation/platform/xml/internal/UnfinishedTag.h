/// A start tag of which pieces have come.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/xml/internal/AttributeCounter.h>

#include <string_view>

namespace ORLFoundation::internal::xml {

class UnfinishedTag {
 public:
  /// How many attributes have come of the tag that begins at a place of the document. Asked again
  /// with more of the same tag, it reads what is new.
  [[nodiscard]] NSUInteger attributes(std::string_view tag, NSUInteger place) noexcept;

 private:
  NSUInteger place_ = 0;
  NSUInteger read_ = 0;  // bytes of the tag there
  AttributeCounter counter_;
};

}  // namespace ORLFoundation::internal::xml
