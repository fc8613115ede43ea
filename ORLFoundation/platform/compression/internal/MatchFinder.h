/// Finds the places in an input that were there before, and hands on what is to be coded.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::compression {

class BlockEncoder;

class MatchFinder {
 public:
  MatchFinder();

  /// Hands the whole input to the encoder, as runs and matches.
  void cut(std::span<const std::uint8_t> input, BlockEncoder& encoder,
           std::vector<std::uint8_t>& output);

 private:
  static constexpr std::size_t kWays = 4;
  /// The last places at which four bytes of one hash stood, the newest first.
  struct Slot {
    std::array<std::int32_t, kWays> places;
    std::array<std::uint32_t, kWays> bytes;

    void add(std::size_t place, std::uint32_t fourBytes) noexcept;
    /// A bit for each of the places at which the same four bytes stood.
    [[nodiscard]] unsigned waysTo(std::uint32_t fourBytes) const noexcept;
  };
  struct Match {
    std::size_t at = 0;
    std::size_t from = 0;
    std::size_t length = 0;

    [[nodiscard]] std::size_t end() const noexcept { return at + length; }
  };

  [[nodiscard]] Slot& slotFor(std::uint32_t fourBytes) noexcept;
  [[nodiscard]] Match longest(const Slot& slot, std::size_t at, std::uint32_t bytes) const noexcept;
  void take(Match found);
  /// Notes the places of what was handed on, and gives back where it ends.
  std::size_t noteHandedOn(std::size_t from) noexcept;
  void emit(const Match& match);

  std::vector<Slot> slots_;
  std::span<const std::uint8_t> input_;
  BlockEncoder* encoder_ = nullptr;
  std::vector<std::uint8_t>* output_ = nullptr;
  /// The first byte that was not handed on.
  std::size_t next_ = 0;
  /// A match that waits for a longer one that begins within it.
  Match pending_;
};

}  // namespace ORLFoundation::internal::compression
