/// Finds secrets in bytes: as they are, in hexadecimal digits, and in Base64 at each alignment. A
/// text is asked at every few places for the six bytes that stand there, letters in lower case: a
/// small table of bits, which the processor's cache holds, tells nearly always that no secret has
/// them among its first ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::logging {

/// A part of a text; its end is the first byte that is no longer in it.
struct Place {
  std::size_t begin;
  std::size_t end;
};

class SecretIndex {
 public:
  /// Each has six bytes at least.
  explicit SecretIndex(std::span<const std::string> secrets);
  /// Overwrites what it knows of the secrets.
  ~SecretIndex();
  SecretIndex(const SecretIndex&) = delete;
  SecretIndex& operator=(const SecretIndex&) = delete;

  /// The bytes of the longest spelling, digits of Base64 that it shares with its neighbours
  /// included.
  [[nodiscard]] std::size_t longest() const noexcept { return longest_; }
  /// Whether a secret holds a blank, for which addresses may have "+".
  [[nodiscard]] bool hasBlanks() const noexcept { return hasBlanks_; }
  /// Adds the places of all secrets in a text. Where several begin at one byte it adds the longest.
  void find(std::string_view text, std::vector<Place>& places) const;

 private:
  /// One spelling of a secret, under the six bytes at one of its first places. A shorter one under
  /// the same, with which it begins, is its parent.
  struct Spelling {
    std::uint64_t key;
    std::size_t offset;
    std::size_t begin, length;  // in bytes_
    bool anyCase;
    bool sharesFirst, sharesLast;  // the digit of Base64 before it, or behind it, has bits of it
    std::int32_t parent;
  };
  /// Spellings that have a key at one place, all in any case or none, in the order of their bytes.
  struct Part {
    std::size_t offset;
    bool anyCase;
    std::int32_t begin, end;  // in spellings_
  };
  struct Group {
    std::uint64_t key;
    std::size_t begin, end;  // in parts_
  };
  static constexpr std::int32_t kNone = -1;
  static constexpr std::size_t kKeyBytes = 6;

  void addSpellings(std::string_view secret);
  void addBase64(std::string_view secret, std::size_t shift);
  void addSpelling(Spelling spelling, std::string_view bytes);
  void sort();
  void addPart(std::int32_t begin, std::int32_t end);
  void makeTables();
  [[nodiscard]] std::string_view bytesOf(const Spelling& spelling) const;
  [[nodiscard]] const Group* groupOf(std::uint64_t key) const noexcept;
  [[nodiscard]] std::optional<Place> longestAt(std::string_view text, std::size_t at,
                                               const Part& part) const;
  void addPlacesAt(std::string_view text, std::size_t at, std::uint64_t key,
                   std::vector<Place>& places) const;

  std::string bytes_;
  std::vector<Spelling> spellings_;
  std::vector<Part> parts_;
  std::vector<Group> groups_;
  std::vector<std::int32_t> slots_;    // groups by hash, kNone for a free one
  std::vector<std::uint64_t> begins_;  // a bit for a hash
  int slotShift_ = 0, beginShift_ = 0;
  std::size_t stride_ = 1;  // as many places of a text as are passed over, and one
  std::size_t longest_ = 0;
  bool hasBlanks_ = false;
};

}  // namespace ORLFoundation::internal::logging
