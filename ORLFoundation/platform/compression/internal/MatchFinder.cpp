#include <ORLFoundation/platform/compression/internal/MatchFinder.h>

#include <ORLFoundation/platform/compression/internal/BlockEncoder.h>
#include <ORLFoundation/platform/compression/internal/LittleEndian.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace ORLFoundation::internal::compression {
namespace {

constexpr unsigned kHashBits = 14;
constexpr std::size_t kLeastMatch = 4, kGoodMatch = 40;
// Bytes that must be there where a match may begin.
constexpr std::size_t kLookAhead = sizeof(std::uint64_t);
// So far apart from anything that no distance reaches it.
constexpr std::int32_t kNowhere = -static_cast<std::int32_t>(kMostD) - 1;
// After so many bytes without a match every second one is looked at, and so on.
constexpr unsigned kPatienceBits = 9;
constexpr std::size_t kMostStep = 8;

std::size_t hashOf(std::uint32_t bytes) noexcept {
  return (bytes * 2654435761U) >> (32 - kHashBits);
}

std::size_t commonLength(const std::uint8_t* left, const std::uint8_t* right,
                         const std::uint8_t* end) noexcept {
  const std::uint8_t* const begin = left;
  for (; end - left >= 8; left += 8, right += 8) {
    const std::uint64_t difference = load<std::uint64_t>(left) ^ load<std::uint64_t>(right);
    if (difference != 0)
      return static_cast<std::size_t>(left - begin) +
             static_cast<std::size_t>(std::countr_zero(difference)) / 8;
  }
  while (left < end && *left == *right) ++left, ++right;
  return static_cast<std::size_t>(left - begin);
}

/// Whether a match takes more bits than its bytes would as literals, of some four bits each: short
/// ones that lie far back do.
bool costsMoreThanItsBytes(std::size_t length, std::size_t distance) noexcept {
  return length < 6 && distance >> (4 * length - 6) != 0;
}

/// Two words at a time: the last of four numbers goes.
template <class Number>
void pushFront(std::array<Number, 4>& numbers, Number number) noexcept {
  static_assert(sizeof numbers == 16);
  std::array<std::uint64_t, 2> words{};
  std::memcpy(words.data(), numbers.data(), sizeof words);
  words[1] = words[1] << 32 | words[0] >> 32;
  words[0] = words[0] << 32 | static_cast<std::uint32_t>(number);
  std::memcpy(numbers.data(), words.data(), sizeof words);
}

}  // namespace

MatchFinder::MatchFinder() : slots_(std::size_t{1} << kHashBits) {}

// Inline, as calls within a shared library are not where others could stand in between.
inline void MatchFinder::Slot::add(std::size_t place, std::uint32_t fourBytes) noexcept {
  pushFront(places, static_cast<std::int32_t>(place));
  pushFront(bytes, fourBytes);
}

inline unsigned MatchFinder::Slot::waysTo(std::uint32_t fourBytes) const noexcept {
  unsigned ways = 0;
  for (unsigned i = 0; i < kWays; ++i) ways |= (bytes[i] == fourBytes ? 1U : 0U) << i;
  return ways;
}

inline MatchFinder::Slot& MatchFinder::slotFor(std::uint32_t fourBytes) noexcept {
  return slots_[hashOf(fourBytes)];
}

inline MatchFinder::Match MatchFinder::longest(const Slot& slot, std::size_t at,
                                               std::uint32_t bytes) const noexcept {
  Match best{at, 0, 0};
  for (unsigned ways = slot.waysTo(bytes); ways != 0; ways &= ways - 1) {
    const std::int64_t place = slot.places[static_cast<std::size_t>(std::countr_zero(ways))];
    if (static_cast<std::int64_t>(at) - place > kMostD) break;
    const auto from = static_cast<std::size_t>(place);
    // Only what goes on where the best one ends can be longer.
    if (best.length > 0 &&
        (best.end() == input_.size() || input_[from + best.length] != input_[best.end()]))
      continue;
    const std::size_t length = kLeastMatch + commonLength(input_.data() + at + kLeastMatch,
                                                          input_.data() + from + kLeastMatch,
                                                          input_.data() + input_.size());
    if (length <= best.length) continue;
    best.from = from;
    best.length = length;
  }
  if (best.length == 0) return best;
  while (best.at > next_ && best.from > 0 && input_[best.at - 1] == input_[best.from - 1]) {
    --best.at;
    --best.from;
    ++best.length;
  }
  if (costsMoreThanItsBytes(best.length, best.at - best.from)) best.length = 0;
  return best;
}

inline void MatchFinder::emit(const Match& match) {
  encoder_->add(input_.subspan(next_, match.at - next_), match.length,
                static_cast<std::uint32_t>(match.at - match.from), *output_);
  next_ = match.end();
}

/// A long match goes at once. Of two that overlap the longer one stays.
inline void MatchFinder::take(Match found) {
  if (pending_.length > 0 && pending_.end() <= found.at) {
    emit(pending_);
    pending_.length = 0;
  }
  if (found.length >= kGoodMatch) {
    emit(found);
    pending_.length = 0;
  } else if (pending_.length == 0) {
    pending_ = found;
  } else {
    emit(found.length > pending_.length ? found : pending_);
    pending_.length = 0;
  }
}

inline std::size_t MatchFinder::noteHandedOn(std::size_t from) noexcept {
  const std::size_t end = next_;
  const std::size_t noted = std::min(end, input_.size() - kLookAhead + 1);
  const std::uint8_t* const input = input_.data();
  for (; from < noted; ++from) {
    const auto bytes = load<std::uint32_t>(input + from);
    slotFor(bytes).add(from, bytes);
  }
  return std::max(from, end);
}

void MatchFinder::cut(std::span<const std::uint8_t> input, BlockEncoder& encoder,
                      std::vector<std::uint8_t>& output) {
  for (Slot& slot : slots_) slot.places.fill(kNowhere);
  input_ = input;
  encoder_ = &encoder;
  output_ = &output;
  next_ = 0;
  pending_ = {};
  for (std::size_t at = 0; at + kLookAhead <= input.size();) {
    const auto bytes = load<std::uint32_t>(input.data() + at);
    Slot& slot = slotFor(bytes);
    const Match found = longest(slot, at, bytes);
    slot.add(at, bytes);
    if (found.length > 0) take(found);
    const std::size_t idle = at > next_ && pending_.length == 0 ? at - next_ : 0;
    at = noteHandedOn(at + 1 + std::min(idle >> kPatienceBits, kMostStep - 1));
  }
  if (pending_.length > 0) emit(pending_);
  encoder.add(input.subspan(next_), 0, 0, output);
}

}  // namespace ORLFoundation::internal::compression
