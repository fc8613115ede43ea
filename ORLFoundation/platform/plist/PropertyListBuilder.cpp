
#include <ORLFoundation/platform/plist/PropertyListBuilder.h>

#include <ORLFoundation/platform/plist/internal/UnicodeText.h>

#include <bit>
#include <functional>
#include <limits>
#include <utility>

namespace ORLFoundation::internal::plist {
namespace {

constexpr std::size_t kFirstSlots = 128;

// Spreads the bits of a number over the whole word.
std::size_t mixed(std::uint64_t value) noexcept {
  value = (value ^ (value >> 32)) * 0xD6E8FEB86659FD93U;
  return value ^ (value >> 32);
}

}  // namespace

PropertyListBuilder::PropertyListBuilder() : slots_(kFirstSlots) {}

PropertyListBuilder::Index PropertyListBuilder::unsignedInteger(std::uint64_t value) {
  constexpr auto kMostSigned = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return unique(
      value <= kMostSigned ? PropertyListKind::Integer : PropertyListKind::UnsignedInteger, value);
}

PropertyListBuilder::Index PropertyListBuilder::real(double value) {
  return unique(PropertyListKind::Real, std::bit_cast<std::uint64_t>(value));
}

PropertyListBuilder::Index PropertyListBuilder::number(const NSNumber& value) {
  switch (value.kind()) {
    case NSNumber::Kind::Boolean:
      return boolean(value.boolValue());
    case NSNumber::Kind::Integer:
      return integer(value.integerValue());
    case NSNumber::Kind::UnsignedInteger:
      return unsignedInteger(value.unsignedIntegerValue());
    default:
      return real(value.doubleValue());
  }
}

PropertyListBuilder::Index PropertyListBuilder::date(double seconds) {
  return unique(PropertyListKind::Date, std::bit_cast<std::uint64_t>(seconds));
}

PropertyListBuilder::Index PropertyListBuilder::string(std::string_view text) {
  checkUTF8(text);
  return uniqueText(PropertyListKind::String, text);
}

PropertyListBuilder::Index PropertyListBuilder::unique(PropertyListKind kind, std::uint64_t bits) {
  return findOrAdd(
      mixed(bits + static_cast<std::uint64_t>(kind) * 0x9E3779B97F4A7C15U),
      [&](Index node) { return table_.kind(node) == kind && table_.unsignedInteger(node) == bits; },
      [&] { return table_.addScalar(kind, bits); });
}

PropertyListBuilder::Index PropertyListBuilder::uniqueText(PropertyListKind kind,
                                                           std::string_view text) {
  if (text.size() > kLongestShared) return table_.addText(kind, text);
  return findOrAdd(
      mixed(std::hash<std::string_view>{}(text) + static_cast<std::uint64_t>(kind)),
      [&](Index node) { return table_.kind(node) == kind && table_.text(node) == text; },
      [&] { return table_.addText(kind, text); });
}

template <class Same, class Add>
PropertyListBuilder::Index PropertyListBuilder::findOrAdd(std::size_t hash, Same&& same,
                                                          Add&& add) {
  if (2 * used_ >= slots_.size()) grow();
  std::size_t at = hash & (slots_.size() - 1);
  while (slots_[at].node != kEmpty) {
    if (slots_[at].hash == hash && same(slots_[at].node)) return slots_[at].node;
    at = (at + 1) & (slots_.size() - 1);
  }
  slots_[at] = {hash, add()};
  ++used_;
  return slots_[at].node;
}

void PropertyListBuilder::grow() {
  std::vector<Slot> old(2 * slots_.size());
  std::swap(old, slots_);
  for (const Slot& slot : old) {
    if (slot.node == kEmpty) continue;
    std::size_t at = slot.hash & (slots_.size() - 1);
    while (slots_[at].node != kEmpty) at = (at + 1) & (slots_.size() - 1);
    slots_[at] = slot;
  }
}

}  // namespace ORLFoundation::internal::plist
