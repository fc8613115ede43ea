#include <ORLFoundation/platform/object/NSMutableData.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>

namespace ORLFoundation {

NSMutableData::NSMutableData(const NSData& data) { appendBytes(data.bytes()); }

void NSMutableData::reserve(std::size_t length) {
  if (length <= capacity_) return;
  constexpr std::size_t kLeast = 64;
  const std::size_t capacity = std::max({length, 2 * capacity_, kLeast});
  void* const space = std::realloc(space_.get(), capacity);
  if (space == nullptr) throw std::bad_alloc();
  static_cast<void>(space_.release());  // what it held stands in the new space
  space_.reset(static_cast<std::uint8_t*>(space));
  capacity_ = capacity;
}

void NSMutableData::appendGrown(std::span<const std::uint8_t> bytes) {
  // Half of the numbers are left for doubling.
  if (bytes.size() > std::numeric_limits<std::size_t>::max() / 4 - length_)
    throw std::length_error("NSMutableData");
  const std::less<> isBefore;
  const std::uint8_t* const begin = space_.get();
  const bool isOwn =
      !isBefore(bytes.data(), begin) && isBefore(bytes.data(), begin + length_) && length_ != 0;
  const auto place = isOwn ? static_cast<std::size_t>(bytes.data() - begin) : 0;
  reserve(length_ + bytes.size());
  appendBytes(isOwn ? std::span<const std::uint8_t>(space_.get() + place, bytes.size()) : bytes);
}

void NSMutableData::setLength(NSUInteger length) {
  if (length > std::numeric_limits<std::size_t>::max() / 4)
    throw std::length_error("NSMutableData");
  reserve(length);
  if (length > length_) std::fill(space_.get() + length_, space_.get() + length, std::uint8_t{0});
  length_ = length;
}

bool NSMutableData::isEqual(const NSObject* other) const {
  const auto* data = dynamic_cast<const NSMutableData*>(other);
  return data != nullptr && text() == data->text();
}

std::shared_ptr<NSObject> NSMutableData::mutableCopy() {
  return std::make_shared<NSMutableData>(data());
}

}  // namespace ORLFoundation
