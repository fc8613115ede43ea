
#include <ORLFoundation/platform/plist/internal/BinaryPropertyListWriter.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/plist/internal/UnicodeText.h>

#include <bit>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::plist {
namespace {

using Index = PropertyListTable::Index;

// The narrowest of 1, 2, 4 and 8 bytes that holds the number.
unsigned widthOf(std::uint64_t value) noexcept {
  if (value <= 0xFF) return 1;
  if (value <= 0xFFFF) return 2;
  return value <= 0xFFFFFFFF ? 4 : 8;
}

class BinaryWriter {
 public:
  explicit BinaryWriter(const PropertyListTable& table)
      : table_(table), numbers_(table.nodeCount()) {}

  std::vector<std::uint8_t> write() {
    number(table_.top());
    referenceWidth_ = widthOf(order_.size());
    append(std::string_view("bplist00"));
    std::vector<std::uint64_t> offsets;
    offsets.reserve(order_.size());
    for (const Index node : order_) {
      offsets.push_back(bytes_.size());
      writeNode(node);
    }
    writeTail(offsets);
    return std::move(bytes_);
  }

 private:
  static constexpr std::size_t kMostInline = 14;

  void number(Index node) {
    if (numbers_[node] != 0) return;
    order_.push_back(node);
    numbers_[node] = static_cast<Index>(order_.size());
    if (table_.kind(node) == PropertyListKind::Array) {
      for (const Index member : table_.members(node)) number(member);
    } else if (table_.kind(node) == PropertyListKind::Dictionary) {
      for (const Index key : table_.keys(node)) number(key);
      for (const Index value : table_.values(node)) number(value);
    }
  }

  void writeNode(Index node) {
    switch (table_.kind(node)) {
      case PropertyListKind::Boolean:
        return byte(table_.boolean(node) ? 0x09 : 0x08);
      case PropertyListKind::Integer:
        return writeInteger(table_.integer(node));
      case PropertyListKind::UnsignedInteger:
        byte(0x14);
        big(0, 8);
        return big(table_.unsignedInteger(node), 8);
      case PropertyListKind::Real:
        byte(0x23);
        return big(std::bit_cast<std::uint64_t>(table_.real(node)), 8);
      case PropertyListKind::Date:
        byte(0x33);
        return big(std::bit_cast<std::uint64_t>(table_.real(node)), 8);
      case PropertyListKind::UID:
        return writeUID(table_.uid(node));
      case PropertyListKind::String:
        return writeString(table_.text(node));
      case PropertyListKind::Data:
        markerWithCount(0x40, table_.text(node).size());
        return append(table_.text(node));
      case PropertyListKind::Array:
        markerWithCount(0xA0, table_.members(node).size());
        return references(table_.members(node));
      case PropertyListKind::Dictionary:
        markerWithCount(0xD0, table_.keys(node).size());
        references(table_.keys(node));
        return references(table_.values(node));
    }
  }

  // Negative ones take eight bytes: shorter integers are read without a sign.
  void writeInteger(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    const unsigned width = value < 0 ? 8 : widthOf(bits);
    byte(static_cast<std::uint8_t>(0x10 + std::countr_zero(width)));
    big(bits, width);
  }

  void writeUID(Index uid) {
    const unsigned width = widthOf(uid);
    byte(static_cast<std::uint8_t>(0x80 + width - 1));
    big(uid, width);
  }

  void writeString(std::string_view text) {
    if (base::isASCII(text)) {
      markerWithCount(0x50, text.size());
      return append(text);
    }
    std::string units;
    markerWithCount(0x60, appendAsUTF16BigEndian(units, text));
    append(units);
  }

  void markerWithCount(std::uint8_t marker, std::size_t count) {
    if (count <= kMostInline) return byte(static_cast<std::uint8_t>(marker + count));
    byte(marker | 0xF);
    writeInteger(static_cast<std::int64_t>(count));
  }

  void references(PropertyListTable::Indexes nodes) {
    for (const Index node : nodes) big(numbers_[node] - 1, referenceWidth_);
  }

  void writeTail(const std::vector<std::uint64_t>& offsets) {
    const std::uint64_t tableOffset = bytes_.size();
    const unsigned offsetWidth = widthOf(tableOffset);
    for (const std::uint64_t offset : offsets) big(offset, offsetWidth);
    big(0, 6);
    big(offsetWidth, 1);
    big(referenceWidth_, 1);
    big(offsets.size(), 8);
    big(0, 8);
    big(tableOffset, 8);
  }

  void byte(std::uint8_t value) { bytes_.push_back(value); }
  void big(std::uint64_t value, unsigned width) {
    for (unsigned at = width; at-- > 0;) byte(static_cast<std::uint8_t>(value >> (8 * at)));
  }
  void append(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }

  const PropertyListTable& table_;
  std::vector<Index> numbers_;  // plus one; 0 is not numbered yet
  std::vector<Index> order_;
  unsigned referenceWidth_ = 1;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace

std::vector<std::uint8_t> writeBinaryPropertyList(const PropertyListTable& table) {
  return BinaryWriter(table).write();
}

}  // namespace ORLFoundation::internal::plist
