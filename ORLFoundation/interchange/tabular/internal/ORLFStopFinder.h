/// Finds the bytes that end a stretch of a tabular text.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ORLFoundation::internal::tabular {

/// Looks for the quotation mark, the separator, the line ends of ASCII and the lead bytes C2 and
/// E2, behind which the other line ends hide. Blocks of 64 bytes are read once each, however many
/// stops they hold; places are to be asked for in ascending order for that.
class ORLFStopFinder {
 public:
  ORLFStopFinder(std::string_view text, char separator) : text_(text), separator_(separator) {
    for (const char c : std::string_view("\"\n\v\f\r\xC2\xE2"))
      stops_[static_cast<unsigned char>(c)] = true;
    stops_[static_cast<unsigned char>(separator)] = true;
  }

  /// The first stop at `from` or behind it, or the length of the text.
  [[nodiscard]] std::size_t find(std::size_t from) {
    while (from < text_.size()) {
      const std::size_t block = from / kBlock * kBlock;
      if (block != block_) load(block);
      const std::uint64_t ahead = mask_ >> (from - block);
      if (ahead != 0) return from + static_cast<std::size_t>(std::countr_zero(ahead));
      from = block + kBlock;
    }
    return text_.size();
  }

 private:
  static constexpr std::size_t kBlock = 64;

  void load(std::size_t block) {
    block_ = block;
    mask_ = block + kBlock <= text_.size() ? wholeMask(text_.data() + block) : partMask(block);
  }

  [[nodiscard]] std::uint64_t partMask(std::size_t block) const {
    std::uint64_t mask = 0;
    for (std::size_t at = block; at < text_.size() && at < block + kBlock; ++at)
      mask |= std::uint64_t{stops_[static_cast<unsigned char>(text_[at])]} << (at - block);
    return mask;
  }

#ifdef __SSE2__
  [[nodiscard]] std::uint64_t wholeMask(const char* bytes) const {
    std::uint64_t mask = 0;
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
      const __m128i* place = reinterpret_cast<const __m128i*>(bytes + 16 * quarter);
      mask |= std::uint64_t{quarterMask(_mm_loadu_si128(place))} << (16 * quarter);
    }
    return mask;
  }

  [[nodiscard]] std::uint32_t quarterMask(__m128i bytes) const {
    const auto equals = [bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    // 0A to 0D: those that differ from their distance to 0A by no more than 3.
    const __m128i distance = _mm_sub_epi8(bytes, _mm_set1_epi8('\n'));
    const __m128i lineEnds =
        _mm_cmpeq_epi8(_mm_min_epu8(distance, _mm_set1_epi8('\r' - '\n')), distance);
    const __m128i marks = _mm_or_si128(equals('"'), equals(separator_));
    const __m128i leads = _mm_or_si128(equals('\xC2'), equals('\xE2'));
    const __m128i stops = _mm_or_si128(_mm_or_si128(marks, leads), lineEnds);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(stops));
  }
#else
  [[nodiscard]] std::uint64_t wholeMask(const char* bytes) const {
    std::uint64_t mask = 0;
    for (std::size_t at = 0; at < kBlock; ++at)
      mask |= std::uint64_t{stops_[static_cast<unsigned char>(bytes[at])]} << at;
    return mask;
  }
#endif

  std::string_view text_;
  char separator_;
  std::array<bool, 256> stops_{};
  std::size_t block_ = static_cast<std::size_t>(-1);
  std::uint64_t mask_ = 0;
};

}  // namespace ORLFoundation::internal::tabular
