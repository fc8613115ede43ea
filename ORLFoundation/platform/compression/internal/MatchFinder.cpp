#include <ORLFoundation/platform/compression/internal/MatchFinder.h>

#include <ORLFoundation/platform/compression/internal/BlockEncoder.h>
#include <ORLFoundation/platform/compression/internal/LittleEndian.h>

#include <algorithm>
#include <bit>

namespace ORLFoundation::internal::compression {
namespace {

constexpr unsigned kHashBits = 14;
constexpr std::size_t kLeastMatch = 4, kGoodMatch = 40;
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

}  // namespace

MatchFinder::MatchFinder() : slots_(std::size_t{1} << kHashBits) {}

MatchFinder::Match MatchFinder::longest(const Slot& slot, std::size_t at,
                                        std::uint32_t bytes) const noexcept {
  Match best{at, 0, 0};
  for (std::size_t i = 0; i < kWays; ++i) {
    if (slot.bytes[i] != bytes) continue;
    const std::int64_t place = slot.places[i];
    if (static_cast<std::int64_t>(at) - place > kMostD) break;
    const auto from = static_cast<std::size_t>(place);
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
  return best;
}

void MatchFinder::emit(const Match& match) {
  encoder_->add(input_.subspan(next_, match.at - next_), match.length,
                static_cast<std::uint32_t>(match.at - match.from), *output_);
  next_ = match.end();
}

/// A long match goes at once. Of two that overlap the longer one stays.
void MatchFinder::take(Match found) {
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

void MatchFinder::cut(std::span<const std::uint8_t> input, BlockEncoder& encoder,
                      std::vector<std::uint8_t>& output) {
  for (Slot& slot : slots_) slot.places.fill(kNowhere);
  input_ = input;
  encoder_ = &encoder;
  output_ = &output;
  next_ = 0;
  pending_ = {};
  for (std::size_t at = 0; at + sizeof(std::uint64_t) <= input.size();) {
    const auto bytes = load<std::uint32_t>(input.data() + at);
    Slot& slot = slots_[hashOf(bytes)];
    if (at >= next_) {
      const Match found = longest(slot, at, bytes);
      if (found.length > 0) take(found);
    }
    for (std::size_t i = kWays - 1; i > 0; --i) {
      slot.places[i] = slot.places[i - 1];
      slot.bytes[i] = slot.bytes[i - 1];
    }
    slot.places[0] = static_cast<std::int32_t>(at);
    slot.bytes[0] = bytes;
    const std::size_t idle = at > next_ && pending_.length == 0 ? at - next_ : 0;
    at += 1 + std::min(idle >> kPatienceBits, kMostStep - 1);
  }
  if (pending_.length > 0) emit(pending_);
  encoder.add(input.subspan(next_), 0, 0, output);
}

}  // namespace ORLFoundation::internal::compression
