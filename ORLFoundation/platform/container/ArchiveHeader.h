/// The header of an entry of an archive: fields under keys of three letters. What a blob field
/// announces follows the header.
///
///     ArchiveHeader header;
///     header.append(ArchiveHeader::Field::uint("TYP", 'F'));
///     header.append(ArchiveHeader::Field::string("PAT", "books/may.csv"));
///     header.append(ArchiveHeader::Field::blob("DAT", 1200));
///     const std::vector<std::uint8_t> bytes = header.encodedData();
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ORLFoundation {

class ArchiveHeader {
 public:
  /// Three upper-case letters or digits.
  class FieldKey {
   public:
    /// Raises `NSInvalidArgumentException` for any other text.
    FieldKey(const char* letters) : FieldKey(std::string_view(letters)) {}  // NOLINT(*-explicit-*)
    explicit FieldKey(std::string_view letters);
    /// nil for any other bytes.
    [[nodiscard]] static std::optional<FieldKey> keyWithBytes(std::span<const std::uint8_t> bytes);

    [[nodiscard]] std::string_view letters() const noexcept {
      return {letters_.data(), letters_.size()};
    }
    friend bool operator==(const FieldKey&, const FieldKey&) = default;
    friend bool operator<(const FieldKey& left, const FieldKey& right) {
      return left.letters_ < right.letters_;
    }

   private:
    FieldKey() = default;
    std::array<char, 3> letters_{};
  };

  /// Which fields a packer writes: "TYP,PAT,DAT". Raises `NSInvalidArgumentException` for a text
  /// that is no list of keys.
  class FieldKeySet {
   public:
    explicit FieldKeySet(std::string_view keys);
    [[nodiscard]] bool contains(const FieldKey& key) const { return keys_.count(key) > 0; }

   private:
    std::set<FieldKey> keys_;
  };

  struct Flag {
    friend bool operator==(const Flag&, const Flag&) = default;
  };
  struct Hash {
    /// 4, 20, 32, 48 or 64.
    std::vector<std::uint8_t> bytes;
    friend bool operator==(const Hash&, const Hash&) = default;
  };
  struct Time {
    /// Since 1970.
    std::int64_t seconds = 0;
    /// nil for a field that holds none.
    std::optional<std::uint32_t> nanoseconds;
    friend bool operator==(const Time&, const Time&) = default;
  };
  struct Blob {
    std::uint64_t size = 0;
    friend bool operator==(const Blob&, const Blob&) = default;
  };
  using Value = std::variant<Flag, std::uint64_t, std::string, Hash, Time, Blob>;

  struct Field {
    FieldKey key;
    Value value;

    [[nodiscard]] static Field flag(FieldKey key) { return {key, Flag{}}; }
    [[nodiscard]] static Field uint(FieldKey key, std::uint64_t value) { return {key, value}; }
    [[nodiscard]] static Field string(FieldKey key, std::string value) {
      return {key, std::move(value)};
    }
    [[nodiscard]] static Field hash(FieldKey key, std::vector<std::uint8_t> bytes) {
      return {key, Hash{std::move(bytes)}};
    }
    [[nodiscard]] static Field time(FieldKey key, Time value) { return {key, value}; }
    /// So many bytes follow the header, behind those of the blobs before it.
    [[nodiscard]] static Field blob(FieldKey key, std::uint64_t size) { return {key, Blob{size}}; }
    friend bool operator==(const Field&, const Field&) = default;
  };

  static constexpr std::size_t kMostBytes = 65535;
  /// Magic and size, which every header begins with.
  static constexpr std::size_t kStartBytes = 6;

  /// `append`  At the end; the order stays.
  void append(Field field) { fields_.push_back(std::move(field)); }
  [[nodiscard]] const std::vector<Field>& fields() const noexcept { return fields_; }

  /// The first field of the key; nil where there is none, or one of another type.
  [[nodiscard]] std::optional<std::uint64_t> uintForKey(FieldKey key) const;
  [[nodiscard]] std::optional<std::string> stringForKey(FieldKey key) const;
  [[nodiscard]] std::optional<std::uint64_t> blobSizeForKey(FieldKey key) const;
  [[nodiscard]] bool hasKey(FieldKey key) const { return first(key) != nullptr; }

  /// Each number in the fewest bytes that hold it. Throws `ArchiveError` for more than 65,535
  /// bytes, and for a text or a hash of a length that has no form.
  [[nodiscard]] std::vector<std::uint8_t> encodedData() const;
  /// The size that the first six bytes tell. Throws `ArchiveError` where they begin no header.
  [[nodiscard]] static std::size_t sizeOfStart(std::span<const std::uint8_t> start);
  /// A whole header. Throws `ArchiveError` for fields that are cut off or of an unknown type.
  [[nodiscard]] static ArchiveHeader headerWithData(std::span<const std::uint8_t> data);

  friend bool operator==(const ArchiveHeader&, const ArchiveHeader&) = default;

 private:
  [[nodiscard]] const Value* first(const FieldKey& key) const;

  std::vector<Field> fields_;
};

}  // namespace ORLFoundation
