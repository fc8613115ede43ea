#include <ORLFoundation/platform/xml/internal/AttributeCounter.h>

#include <algorithm>

namespace ORLFoundation::internal::xml {

void AttributeCounter::read(std::string_view markup) noexcept {
  for (const char c : markup) {
    if (c == '<') {
      isInTag_ = true;
      quote_ = 0;
      count_ = 0;
    } else if (isInTag_) {
      readInTag(c);
    }
  }
}

void AttributeCounter::readInTag(char c) noexcept {
  if (quote_ != 0) {
    if (c == quote_) quote_ = 0;
  } else if (c == '"' || c == '\'') {
    quote_ = c;
  } else if (c == '>') {
    isInTag_ = false;
  } else if (c == '=') {
    most_ = std::max(most_, ++count_);
  }
}

}  // namespace ORLFoundation::internal::xml
