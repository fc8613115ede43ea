#include <ORLFoundation/platform/compression/internal/LZVN.h>

#include <ORLFoundation/platform/compression/internal/LittleEndian.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace ORLFoundation::internal::compression {
namespace {

constexpr std::size_t kLeastRepeat = 3, kMostRunOfMatch = 3;
constexpr std::size_t kMostSmall = 15, kLeastLarge = 16, kMostLarge = 271;
constexpr std::uint32_t kMostSmallDistance = 1535, kMostMediumDistance = 16383;
constexpr std::size_t kMostMediumMatch = 34;
constexpr std::uint32_t kMostDistance = 65535;
constexpr std::uint8_t kEnd = 0x06, kFirstNothing = 0x0e, kSecondNothing = 0x16;
constexpr std::size_t kEndBytes = 8;

/// The longest match that an operation with a run can hold, so that it stays out of the rows of
/// other operations.
std::size_t mostMatchBeside(std::size_t run) { return 10 - 2 * run; }

/// Operations of a match's rest.
std::size_t costOfRest(std::size_t length) {
  const std::size_t large = length / kMostLarge, rest = length % kMostLarge;
  return 2 * large + (rest == 0 ? 0 : rest <= kMostSmall ? 1 : 2);
}

class Writer {
 public:
  explicit Writer(std::vector<std::uint8_t>& output) : output_(output) {}

  void literals(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
      const std::size_t count = std::min(bytes.size(), kMostLarge);
      if (count > kMostSmall) {
        byte(0xe0);
        byte(count - kLeastLarge);
      } else {
        byte(0xe0 | count);
      }
      run(bytes.first(count));
      bytes = bytes.subspan(count);
    }
  }

  void match(std::span<const std::uint8_t> literals_, std::size_t length, std::uint32_t distance) {
    if (literals_.size() > kMostRunOfMatch) {
      literals(literals_);
      literals_ = {};
    }
    const std::size_t left = length - begin(literals_, length, distance);
    last_ = distance;
    rest(left);
  }

  void end() {
    output_.push_back(kEnd);
    output_.insert(output_.end(), kEndBytes - 1, 0);
  }

  /// How many bytes a match costs, wherever its literals stand.
  [[nodiscard]] std::size_t cost(std::size_t length, std::uint32_t distance) const {
    if (distance == last_) return std::max<std::size_t>(1, costOfRest(length));
    const std::size_t inFirst = std::min(length, mostMatchBeside(0));
    if (distance <= kMostSmallDistance) return 2 + costOfRest(length - inFirst);
    return 3 + (distance <= kMostMediumDistance && length <= kMostMediumMatch
                    ? 0
                    : costOfRest(length - inFirst));
  }

 private:
  void byte(std::size_t value) { output_.push_back(static_cast<std::uint8_t>(value)); }
  void run(std::span<const std::uint8_t> bytes) {
    output_.insert(output_.end(), bytes.begin(), bytes.end());
  }

  /// The first operation; how much of the match it holds.
  std::size_t begin(std::span<const std::uint8_t> bytes, std::size_t length,
                    std::uint32_t distance) {
    const std::size_t count = bytes.size();
    const std::size_t here = std::min(length, mostMatchBeside(count));
    const std::size_t head = count << 6 | (here - kLeastRepeat) << 3;
    if (distance == last_) {
      if (count == 0) return 0;
      byte(head | 6);
    } else if (distance <= kMostSmallDistance && (here == length || length > kMostMediumMatch)) {
      byte(head | distance >> 8);
      byte(distance & 0xff);
    } else if (distance <= kMostMediumDistance && length <= kMostMediumMatch) {
      const std::size_t number = length - kLeastRepeat;
      byte(0xa0 | count << 3 | number >> 2);
      half(distance << 2 | (number & 3));
      run(bytes);
      return length;
    } else {
      byte(head | 7);
      half(distance);
    }
    run(bytes);
    return here;
  }

  void half(std::size_t value) {
    byte(value & 0xff);
    byte(value >> 8 & 0xff);
  }

  void rest(std::size_t length) {
    while (length > 0) {
      const std::size_t count = std::min(length, kMostLarge);
      if (count > kMostSmall) {
        byte(0xf0);
        byte(count - kLeastLarge);
      } else {
        byte(0xf0 | count);
      }
      length -= count;
    }
  }

  std::vector<std::uint8_t>& output_;
  std::uint32_t last_ = 0;
};

struct Match {
  std::size_t length = 0;
  std::uint32_t distance = 0;
  /// Bytes saved.
  std::size_t gain = 0;
};

/// All earlier places at which three bytes of one hash stood.
class Places {
 public:
  explicit Places(std::span<const std::uint8_t> input) : input_(input), before_(input.size()) {
    first_.fill(kNone);
  }

  void add(std::size_t at) {
    std::int32_t& first = first_[hashAt(at)];
    before_[at] = first;
    first = static_cast<std::int32_t>(at);
  }

  [[nodiscard]] Match best(std::size_t at, const Writer& writer) const {
    Match best;
    std::size_t tries = kMostTries;
    for (std::int32_t place = first_[hashAt(at)]; place != kNone && tries > 0;
         place = before_[static_cast<std::size_t>(place)], --tries) {
      const auto distance = static_cast<std::uint32_t>(at - static_cast<std::size_t>(place));
      if (distance > kMostDistance) break;
      const std::size_t length = lengthAt(at, static_cast<std::size_t>(place));
      if (length < kLeastRepeat) continue;
      const std::size_t cost = writer.cost(length, distance);
      if (length > cost && length - cost > best.gain) best = {length, distance, length - cost};
    }
    return best;
  }

 private:
  static constexpr std::int32_t kNone = -1;
  static constexpr unsigned kHashBits = 12;
  static constexpr std::size_t kMostTries = 256;

  [[nodiscard]] std::size_t hashAt(std::size_t at) const {
    const std::uint32_t bytes = load<std::uint32_t>(input_.data() + at) & 0xffffffU;
    return (bytes * 2654435761U) >> (32 - kHashBits);
  }
  [[nodiscard]] std::size_t lengthAt(std::size_t at, std::size_t place) const {
    std::size_t length = 0;
    while (at + length < input_.size() && input_[at + length] == input_[place + length]) ++length;
    return length;
  }

  const std::span<const std::uint8_t> input_;
  std::array<std::int32_t, std::size_t{1} << kHashBits> first_{};
  std::vector<std::int32_t> before_;
};

}  // namespace

void appendLZVN(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& output) {
  Writer writer(output);
  Places places(input);
  // Four bytes are looked at wherever a match may begin.
  const std::size_t last = input.size() - sizeof(std::uint32_t);
  std::size_t next = 0;
  Match held;
  for (std::size_t at = 0; at <= last; ++at) {
    const Match found = at >= next ? places.best(at, writer) : Match{};
    places.add(at);
    if (held.length > 0 && found.gain <= held.gain) {
      const std::size_t begin = at - 1;
      writer.match(input.subspan(next, begin - next), held.length, held.distance);
      next = begin + held.length;
      held = {};
    } else if (at >= next) {
      held = found;
    }
  }
  if (held.length > 0) {
    writer.match(input.subspan(next, last - next), held.length, held.distance);
    next = last + held.length;
  }
  writer.literals(input.subspan(next));
  writer.end();
}

namespace {

/// Reads operations from a payload.
class Reader {
 public:
  Reader(std::span<const std::uint8_t> payload, const std::uint8_t* begin, std::uint8_t* at,
         std::uint8_t* end)
      : payload_(payload), begin_(begin), at_(at), end_(end) {}

  bool read() {
    while (next_ < payload_.size()) {
      const std::uint8_t code = payload_[next_];
      if (code == kEnd) return isAtEnd();
      if (code == kFirstNothing || code == kSecondNothing) {
        ++next_;
      } else if (!(code >= 0xe0 ? readLong(code) : readShort(code))) {
        return false;
      }
    }
    return false;
  }

 private:
  [[nodiscard]] bool isAtEnd() const {
    const auto rest = payload_.subspan(next_);
    return at_ == end_ && rest.size() == kEndBytes &&
           std::all_of(rest.begin() + 1, rest.end(), [](std::uint8_t byte) { return byte == 0; });
  }
  [[nodiscard]] bool has(std::size_t count) const { return payload_.size() - next_ >= count; }

  /// 0xE0 to 0xFF: literals alone, or a match at the last distance.
  bool readLong(std::uint8_t code) {
    std::size_t count = code & 15U;
    const bool isLarge = count == 0;
    if (!has(isLarge ? 2 : 1)) return false;
    if (isLarge) count = payload_[next_ + 1] + kLeastLarge;
    next_ += isLarge ? 2 : 1;
    return code < 0xf0 ? literals(count) : match(count);
  }

  bool readShort(std::uint8_t code) {
    if ((code >= 0x70 && code <= 0x7f) || (code >= 0xd0 && code <= 0xdf)) return false;
    if ((code & 0xe0U) == 0xa0U) return readMedium(code);
    const std::size_t run = code >> 6;
    const std::size_t length = (code >> 3 & 7U) + kLeastRepeat;
    const std::uint8_t kind = code & 7U;
    if (kind == 6 && run == 0) return false;
    if (!has(kind == 7 ? 3 : kind == 6 ? 1 : 2)) return false;
    if (kind == 7) {
      distance_ = load<std::uint16_t>(payload_.data() + next_ + 1);
      next_ += 3;
    } else if (kind == 6) {
      next_ += 1;
    } else {
      distance_ = std::size_t{kind} << 8 | payload_[next_ + 1];
      next_ += 2;
    }
    return literals(run) && match(length);
  }

  bool readMedium(std::uint8_t code) {
    if (!has(3)) return false;
    const auto number = load<std::uint16_t>(payload_.data() + next_ + 1);
    const std::size_t length = ((code & 7U) << 2 | (number & 3U)) + kLeastRepeat;
    distance_ = number >> 2;
    next_ += 3;
    return literals(code >> 3 & 3U) && match(length);
  }

  bool literals(std::size_t count) {
    if (!has(count) || static_cast<std::size_t>(end_ - at_) < count) return false;
    if (count > 0) std::memcpy(at_, payload_.data() + next_, count);
    next_ += count;
    at_ += count;
    return true;
  }

  bool match(std::size_t length) {
    if (distance_ == 0 || distance_ > static_cast<std::size_t>(at_ - begin_) ||
        static_cast<std::size_t>(end_ - at_) < length)
      return false;
    copyMatch(at_, distance_, length, end_ - at_);
    at_ += length;
    return true;
  }

  const std::span<const std::uint8_t> payload_;
  const std::uint8_t* const begin_;
  std::uint8_t* at_;
  std::uint8_t* const end_;
  std::size_t next_ = 0;
  std::size_t distance_ = 0;
};

}  // namespace

bool decodeLZVN(std::span<const std::uint8_t> payload, const std::uint8_t* begin, std::uint8_t* at,
                std::uint8_t* end) {
  return Reader(payload, begin, at, end).read();
}

}  // namespace ORLFoundation::internal::compression
