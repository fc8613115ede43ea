#include <ORLFoundation/platform/xml/internal/UnfinishedTag.h>

namespace ORLFoundation::internal::xml {

NSUInteger UnfinishedTag::attributes(std::string_view tag, NSUInteger place) noexcept {
  if (place != place_ || tag.size() < read_) {
    place_ = place;
    read_ = 0;
    counter_ = {};
  }
  counter_.read(tag.substr(read_));
  read_ = tag.size();
  return counter_.most();
}

}  // namespace ORLFoundation::internal::xml
