
#include <ORLFoundation/platform/plist/internal/BinaryPropertyListReader.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/plist/internal/UnicodeText.h>

#include <bit>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::plist {
namespace {

constexpr std::string_view kHeader = "bplist0";
constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;
// Objects may share bytes, though writers do not let them: so many times the length is read.
constexpr std::size_t kMostReuse = 8;

enum Marker : std::uint8_t {
  kSingleton = 0x0,
  kInteger = 0x1,
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kASCII = 0x5,
  kUTF16 = 0x6,
  kUID = 0x8,
  kArray = 0xA,
  kDictionary = 0xD,
};

std::uint64_t bigEndian(std::span<const std::uint8_t> bytes) noexcept {
  std::uint64_t value = 0;
  for (const std::uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

void require(bool condition, const char* fault) {
  if (!condition) throw PropertyListFault(fault);
}

class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes)
      : bytes_(bytes), budget_(bytes.size() * kMostReuse) {}

  PropertyListTable read() {
    readTrailer();
    table_.reserve(objectCount_, objectsEnd_);
    for (std::size_t object = 0; object < objectCount_; ++object) readObject(offsetOf(object));
    table_.setTop(top_);
    checkKeys();
    static_cast<void>(table_.expandedCount());
    return std::move(table_);
  }

 private:
  using Index = PropertyListTable::Index;

  void readTrailer() {
    require(bytes_.size() > kHeaderSize + kTrailerSize, "The list is cut off.");
    const auto trailer = bytes_.last(kTrailerSize);
    offsetSize_ = trailer[6];
    referenceSize_ = trailer[7];
    const std::uint64_t count = bigEndian(trailer.subspan(8, 8));
    const std::uint64_t top = bigEndian(trailer.subspan(16, 8));
    const std::uint64_t tableOffset = bigEndian(trailer.subspan(24, 8));
    require(offsetSize_ >= 1 && offsetSize_ <= 8, "Offsets have an impossible width.");
    require(referenceSize_ >= 1 && referenceSize_ <= 8, "References have an impossible width.");
    require(tableOffset > kHeaderSize && tableOffset < bytes_.size() - kTrailerSize,
            "The table of offsets lies outside the list.");
    const std::uint64_t tableSize = bytes_.size() - kTrailerSize - tableOffset;
    require(count >= 1 && count <= tableSize && count * offsetSize_ == tableSize,
            "The table of offsets has another size than the list has room for.");
    require(top < count, "The top object lies outside the list.");
    require(holdsMoreThan(referenceSize_, count), "References are too narrow.");
    require(holdsMoreThan(offsetSize_, tableOffset), "Offsets are too narrow.");
    require(count <= UINT32_MAX, "The list is too large.");
    objectCount_ = count;
    top_ = static_cast<Index>(top);
    objectsEnd_ = tableOffset;
  }

  static bool holdsMoreThan(unsigned width, std::uint64_t value) noexcept {
    return width >= 8 || value >> (8 * width) == 0;
  }

  std::size_t offsetOf(std::size_t object) const {
    const auto entry = bytes_.subspan(objectsEnd_ + object * offsetSize_, offsetSize_);
    const std::uint64_t offset = bigEndian(entry);
    require(offset >= kHeaderSize && offset < objectsEnd_, "An offset lies outside the objects.");
    return offset;
  }

  std::span<const std::uint8_t> take(std::uint64_t length) {
    require(length <= objectsEnd_ - position_, "An object is cut off.");
    require(length <= budget_, "Objects overlap.");
    budget_ -= length;
    const auto taken = bytes_.subspan(position_, length);
    position_ += length;
    return taken;
  }

  void readObject(std::size_t offset) {
    position_ = offset;
    const std::uint8_t marker = take(1)[0];
    const unsigned info = marker & 0xF;
    switch (marker >> 4) {
      case kSingleton:
        require(info == 8 || info == 9, "An object is of an unknown kind.");
        table_.addScalar(PropertyListKind::Boolean, info == 9);
        return;
      case kInteger:
        return readInteger(info);
      case kReal:
        require(info == 2 || info == 3, "A real has an unknown width.");
        table_.addReal(PropertyListKind::Real, takeReal(info));
        return;
      case kDate:
        return readDate(info);
      case kUID:
        return readUID(info);
      default:
        return readCounted(marker >> 4, info);
    }
  }

  // Up to four bytes are without a sign, eight have one, and sixteen tell 2^63 and above.
  void readInteger(unsigned info) {
    require(info <= 4, "An integer has an unknown width.");
    const auto bytes = take(std::uint64_t{1} << info);
    if (info < 4) {
      table_.addScalar(PropertyListKind::Integer, bigEndian(bytes));
      return;
    }
    const std::uint64_t high = bigEndian(bytes.first(8));
    const std::uint64_t low = bigEndian(bytes.last(8));
    if (high == 0) {
      table_.addUnsigned(low);
    } else {
      require(high == UINT64_MAX && low >> 63 == 1, "An integer is out of range.");
      table_.addScalar(PropertyListKind::Integer, low);
    }
  }

  double takeReal(unsigned info) {
    if (info == 2) return std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(take(4))));
    return std::bit_cast<double>(bigEndian(take(8)));
  }

  void readDate(unsigned info) {
    require(info == 3, "A date has an unknown width.");
    table_.addReal(PropertyListKind::Date, takeReal(info));
  }

  void readUID(unsigned info) {
    const auto bytes = take(info + 1);
    const std::size_t leading = bytes.size() > 8 ? bytes.size() - 8 : 0;
    const std::uint64_t value = bigEndian(bytes.subspan(leading));
    require(bigEndian(bytes.first(leading)) == 0 && value <= UINT32_MAX,
            "A reference to an object is out of range.");
    table_.addScalar(PropertyListKind::UID, value);
  }

  std::uint64_t takeCount(unsigned info) {
    if (info < 0xF) return info;
    const std::uint8_t marker = take(1)[0];
    require(marker >> 4 == kInteger && (marker & 0xF) <= 3, "A count is no integer.");
    const std::uint64_t count = bigEndian(take(std::uint64_t{1} << (marker & 0xF)));
    require(count <= bytes_.size(), "A count is larger than the list.");
    return count;
  }

  void readCounted(unsigned kind, unsigned info) {
    const std::uint64_t count = takeCount(info);
    switch (kind) {
      case kData:
        table_.addText(PropertyListKind::Data, textOf(take(count)));
        return;
      case kASCII: {
        const std::string_view text = textOf(take(count));
        require(base::isASCII(text), "A text holds a byte that is not ASCII.");
        table_.addText(PropertyListKind::String, text);
        return;
      }
      case kUTF16:
        text_.clear();
        appendFromUTF16BigEndian(text_, take(2 * count));
        table_.addText(PropertyListKind::String, text_);
        return;
      case kArray:
        takeReferences(count);
        table_.addArray(references_);
        return;
      case kDictionary: {
        takeReferences(2 * count);
        const PropertyListTable::Indexes all(references_);
        table_.addDictionary(all.first(count), all.subspan(count));
        return;
      }
      default:
        throw PropertyListFault("An object is of an unknown kind.");
    }
  }

  static std::string_view textOf(std::span<const std::uint8_t> bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }

  void takeReferences(std::uint64_t count) {
    const auto bytes = take(count * referenceSize_);
    references_.clear();
    for (std::size_t at = 0; at < bytes.size(); at += referenceSize_) {
      const std::uint64_t reference = bigEndian(bytes.subspan(at, referenceSize_));
      require(reference < objectCount_, "A reference lies outside the list.");
      references_.push_back(static_cast<Index>(reference));
    }
  }

  void checkKeys() const {
    for (Index node = 0; node < table_.nodeCount(); ++node) {
      if (table_.kind(node) != PropertyListKind::Dictionary) continue;
      for (const Index key : table_.keys(node))
        require(table_.kind(key) == PropertyListKind::String, "A key is no text.");
    }
  }

  std::span<const std::uint8_t> bytes_;
  std::size_t budget_;
  std::size_t position_ = 0;
  std::size_t objectsEnd_ = 0;
  std::size_t objectCount_ = 0;
  unsigned offsetSize_ = 0;
  unsigned referenceSize_ = 0;
  Index top_ = 0;
  PropertyListTable table_;
  std::vector<Index> references_;
  std::string text_;
};

}  // namespace

PropertyListTable readBinaryPropertyList(std::span<const std::uint8_t> bytes) {
  const std::string_view start(reinterpret_cast<const char*>(bytes.data()),
                               std::min<std::size_t>(bytes.size(), kHeaderSize));
  require(start.size() == kHeaderSize && start.starts_with(kHeader) && base::isDigit(start.back()),
          "The list does not begin as a binary one.");
  return Reader(bytes).read();
}

}  // namespace ORLFoundation::internal::plist
