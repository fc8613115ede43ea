#include <ORLFoundation/platform/object/NSMutableData.h>

#include <algorithm>
#include <functional>

namespace ORLFoundation {

NSMutableData::NSMutableData(const NSData& data)
    : bytes_(data.bytes().begin(), data.bytes().end()) {}

void NSMutableData::appendBytes(std::span<const std::uint8_t> bytes) {
  const std::less<> isBefore;
  const bool isOwn = !bytes.empty() && !isBefore(bytes.data(), bytes_.data()) &&
                     isBefore(bytes.data(), bytes_.data() + bytes_.size());
  if (!isOwn) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return;
  }
  // Growing would move what is to be copied.
  const std::vector<std::uint8_t> copied(bytes.begin(), bytes.end());
  bytes_.insert(bytes_.end(), copied.begin(), copied.end());
}

bool NSMutableData::isEqual(const NSObject* other) const {
  const auto* data = dynamic_cast<const NSMutableData*>(other);
  return data != nullptr && std::ranges::equal(bytes_, data->bytes_);
}

std::shared_ptr<NSObject> NSMutableData::mutableCopy() {
  return std::make_shared<NSMutableData>(data());
}

}  // namespace ORLFoundation
