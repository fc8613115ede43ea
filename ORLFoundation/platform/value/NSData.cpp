

#include <ORLFoundation/platform/value/NSData.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::size_t kShownWhole = 24;
constexpr std::size_t kShownHead = 16;
constexpr std::size_t kShownTail = 8;
constexpr std::size_t kGroup = 4;

void appendGroups(std::string& out, std::span<const std::uint8_t> bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i != 0 && i % kGroup == 0) out += ' ';
    internal::base::appendHexByte(out, bytes[i]);
  }
}

}  // namespace

NSData::NSData(std::vector<std::uint8_t> bytes) {
  if (!bytes.empty()) bytes_ = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
}

NSData NSData::dataWipedAtRelease(std::vector<std::uint8_t> bytes) {
  // What is only reserved may hold bytes that were cut off.
  const auto wipe = [](std::vector<std::uint8_t>* held) {
    held->resize(held->capacity());
    explicit_bzero(held->data(), held->size());
    delete held;
  };
  NSData data;
  if (bytes.capacity() > 0)
    data.bytes_ = std::shared_ptr<std::vector<std::uint8_t>>(
        new std::vector<std::uint8_t>(std::move(bytes)), wipe);
  return data;
}

NSData::NSData(std::span<const std::uint8_t> bytes)
    : NSData(std::vector<std::uint8_t>(bytes.begin(), bytes.end())) {}

NSData::NSData(std::string_view text)
    : NSData(std::vector<std::uint8_t>(text.begin(), text.end())) {}

std::string_view NSData::text() const noexcept {
  const auto all = bytes();
  return {reinterpret_cast<const char*>(all.data()), all.size()};
}

bool NSData::isEqualToData(const NSData& other) const noexcept {
  return bytes_ == other.bytes_ || std::ranges::equal(bytes(), other.bytes());
}

NSUInteger NSData::hash() const noexcept { return std::hash<std::string_view>{}(text()); }

std::string NSData::description() const {
  const auto all = bytes();
  std::string out = "{length = " + std::to_string(all.size()) + ", bytes = 0x";
  if (all.size() <= kShownWhole) {
    out += internal::base::hexText(text());
  } else {
    appendGroups(out, all.first(kShownHead));
    out += " ... ";
    appendGroups(out, all.last(kShownTail));
    out += ' ';
  }
  return out += '}';
}

}  // namespace ORLFoundation
