#include <ORLFoundation/platform/container/ArchiveHeader.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>

namespace ORLFoundation {

using namespace internal::container;

namespace {

constexpr std::string_view kMagic = "AA01", kOlderMagic = "YAA1";
constexpr std::size_t kFieldStartBytes = 4;  // and the type

struct HashForm {
  char type;
  std::size_t bytes;
};
constexpr std::array kHashForms{HashForm{'F', 4}, HashForm{'G', 20}, HashForm{'H', 32},
                                HashForm{'I', 48}, HashForm{'J', 64}};

struct BlobForm {
  char type;
  std::size_t bytes;
};
constexpr std::array kBlobForms{BlobForm{'A', 2}, BlobForm{'B', 4}, BlobForm{'C', 8}};

constexpr std::array<std::size_t, 4> kNumberWidths{1, 2, 4, 8};

bool isKeyCharacter(char c) {
  return internal::base::isUpperLetter(c) || internal::base::isDigit(c);
}

bool fits(std::uint64_t value, std::size_t width) {
  return width == 8 || value >> (8 * width) == 0;
}

/// Appends the type and the value.
class ValueWriter {
 public:
  explicit ValueWriter(Bytes& bytes) : bytes_(bytes) {}

  void operator()(const ArchiveHeader::Flag&) const { type('*'); }
  void operator()(std::uint64_t value) const {
    for (const std::size_t width : kNumberWidths) {
      if (!fits(value, width)) continue;
      type(static_cast<char>('0' + width));
      appendLittle(bytes_, value, width);
      return;
    }
  }
  void operator()(const std::string& text) const {
    if (text.size() > ArchiveHeader::kMostBytes) throwTooLong();
    type('P');
    appendLittle(bytes_, text.size(), 2);
    bytes_.insert(bytes_.end(), text.begin(), text.end());
  }
  void operator()(const ArchiveHeader::Hash& hash) const {
    for (const HashForm& form : kHashForms) {
      if (form.bytes != hash.bytes.size()) continue;
      type(form.type);
      appendBytes(bytes_, hash.bytes);
      return;
    }
    throw ArchiveError(ArchiveErrorUnsupported, "No field holds a hash of that length.");
  }
  void operator()(const ArchiveHeader::Time& time) const {
    type(time.nanoseconds ? 'T' : 'S');
    appendLittle(bytes_, static_cast<std::uint64_t>(time.seconds), 8);
    if (time.nanoseconds) appendLittle(bytes_, *time.nanoseconds, 4);
  }
  void operator()(const ArchiveHeader::Blob& blob) const {
    for (const BlobForm& form : kBlobForms) {
      if (!fits(blob.size, form.bytes)) continue;
      type(form.type);
      appendLittle(bytes_, blob.size, form.bytes);
      return;
    }
  }

  [[noreturn]] static void throwTooLong() {
    throw ArchiveError(ArchiveErrorTooLarge,
                       "An entry's names take more than an archive's header holds.");
  }

 private:
  void type(char letter) const { bytes_.push_back(static_cast<std::uint8_t>(letter)); }

  Bytes& bytes_;
};

/// Reads the values of a header one after the other.
class ValueReader {
 public:
  explicit ValueReader(ByteSpan bytes) : bytes_(bytes) {}

  [[nodiscard]] bool isAtEnd() const { return bytes_.empty(); }

  ArchiveHeader::Field field() {
    const auto start = take(kFieldStartBytes);
    const auto key = ArchiveHeader::FieldKey::keyWithBytes(start.first(3));
    if (!key) throwDamaged("a header has a field without a name");
    return {*key, value(static_cast<char>(start[3]))};
  }

 private:
  ByteSpan take(std::size_t count) {
    if (bytes_.size() < count) throwDamaged("a header ends within a field");
    const ByteSpan taken = bytes_.first(count);
    bytes_ = bytes_.subspan(count);
    return taken;
  }
  std::uint64_t number(std::size_t width) { return littleAt(take(width), 0, width); }

  ArchiveHeader::Value value(char type) {
    switch (type) {
      case '*':
        return ArchiveHeader::Flag{};
      case '1':
      case '2':
      case '4':
      case '8':
        return number(static_cast<std::size_t>(type - '0'));
      case 'P': {
        const ByteSpan text = take(number(2));
        return std::string(text.begin(), text.end());
      }
      case 'S':
        return ArchiveHeader::Time{static_cast<std::int64_t>(number(8)), std::nullopt};
      case 'T': {
        const auto seconds = static_cast<std::int64_t>(number(8));
        return ArchiveHeader::Time{seconds, static_cast<std::uint32_t>(number(4))};
      }
      default:
        return hashOrBlob(type);
    }
  }
  ArchiveHeader::Value hashOrBlob(char type) {
    for (const BlobForm& form : kBlobForms)
      if (form.type == type) return ArchiveHeader::Blob{number(form.bytes)};
    for (const HashForm& form : kHashForms) {
      if (form.type != type) continue;
      const ByteSpan hash = take(form.bytes);
      return ArchiveHeader::Hash{{hash.begin(), hash.end()}};
    }
    throwDamaged("a header has a field of an unknown type");
  }

  ByteSpan bytes_;
};

}  // namespace

ArchiveHeader::FieldKey::FieldKey(std::string_view letters) {
  if (letters.size() != letters_.size() ||
      !std::all_of(letters.begin(), letters.end(), isKeyCharacter))
    throw NSException(NSInvalidArgumentException,
                      "\"" + std::string(letters) + "\" is no key of an archive's field");
  std::copy(letters.begin(), letters.end(), letters_.begin());
}

std::optional<ArchiveHeader::FieldKey> ArchiveHeader::FieldKey::keyWithBytes(ByteSpan bytes) {
  FieldKey key;
  if (bytes.size() != key.letters_.size()) return std::nullopt;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    key.letters_[i] = static_cast<char>(bytes[i]);
    if (!isKeyCharacter(key.letters_[i])) return std::nullopt;
  }
  return key;
}

ArchiveHeader::FieldKeySet::FieldKeySet(std::string_view keys) {
  while (true) {
    const std::size_t comma = keys.find(',');
    keys_.insert(FieldKey(keys.substr(0, comma)));
    if (comma == keys.npos) return;
    keys.remove_prefix(comma + 1);
  }
}

const ArchiveHeader::Value* ArchiveHeader::first(const FieldKey& key) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const Field& field) { return field.key == key; });
  return found == fields_.end() ? nullptr : &found->value;
}

std::optional<std::uint64_t> ArchiveHeader::uintForKey(FieldKey key) const {
  const auto* const value = std::get_if<std::uint64_t>(first(key));
  return value == nullptr ? std::nullopt : std::optional(*value);
}

std::optional<std::string> ArchiveHeader::stringForKey(FieldKey key) const {
  const auto* const value = std::get_if<std::string>(first(key));
  return value == nullptr ? std::nullopt : std::optional(*value);
}

std::optional<std::uint64_t> ArchiveHeader::blobSizeForKey(FieldKey key) const {
  const auto* const value = std::get_if<Blob>(first(key));
  return value == nullptr ? std::nullopt : std::optional(value->size);
}

std::vector<std::uint8_t> ArchiveHeader::encodedData() const {
  Bytes bytes(kMagic.begin(), kMagic.end());
  appendLittle(bytes, 0, 2);
  for (const Field& field : fields_) {
    const std::string_view letters = field.key.letters();
    bytes.insert(bytes.end(), letters.begin(), letters.end());
    std::visit(ValueWriter(bytes), field.value);
  }
  if (bytes.size() > kMostBytes) ValueWriter::throwTooLong();
  bytes[4] = static_cast<std::uint8_t>(bytes.size());
  bytes[5] = static_cast<std::uint8_t>(bytes.size() >> 8);
  return bytes;
}

std::size_t ArchiveHeader::sizeOfStart(ByteSpan start) {
  if (start.size() < kStartBytes) throwDamaged("it ends within a header");
  if (!beginsWith(start, kMagic) && !beginsWith(start, kOlderMagic))
    throwDamaged("an entry does not begin where one should");
  const std::uint64_t size = littleAt(start, 4, 2);
  if (size < kStartBytes) throwDamaged("a header is shorter than it can be");
  return size;
}

ArchiveHeader ArchiveHeader::headerWithData(ByteSpan data) {
  const std::size_t size = sizeOfStart(data);
  if (size != data.size()) throwDamaged("it ends within a header");
  ArchiveHeader header;
  ValueReader reader(data.subspan(kStartBytes));
  while (!reader.isAtEnd()) header.append(reader.field());
  return header;
}

}  // namespace ORLFoundation
