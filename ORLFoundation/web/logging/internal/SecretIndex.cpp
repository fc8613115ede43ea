
#include <ORLFoundation/web/logging/internal/SecretIndex.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <tuple>

namespace ORLFoundation::internal::logging {
namespace {

constexpr std::uint64_t kKeyMask = 0xFFFF'FFFF'FFFF;
// Puts ASCII letters into lower case. What it does to other bytes is of no matter: keys only narrow
// the choice.
constexpr std::uint64_t kLowerLetters = 0x2020'2020'2020'2020;

constexpr std::uint64_t hashOf(std::uint64_t key) noexcept { return key * 0x9E37'79B9'7F4A'7C15; }

/// The key of eight bytes, of which the last two do not count.
std::uint64_t keyOfEight(const char* bytes) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return (word | kLowerLetters) & kKeyMask;
}

std::uint64_t keyOfSix(const char* bytes) noexcept {
  char eight[8] = {};
  std::memcpy(eight, bytes, 6);
  return keyOfEight(eight);
}

template <class Values>
void wipe(Values& values) {
  ::explicit_bzero(values.data(), values.size() * sizeof(*values.data()));
}

/// As many bits as tables of so many entries need, a few for each.
int bitsFor(std::size_t entries, std::size_t each) {
  return std::max(10, static_cast<int>(std::bit_width(entries * each)));
}

bool isBase64Digit(char c) { return base::base64DigitValue(c) >= 0 || c == '-' || c == '_'; }

/// Compares the beginning of a text with a spelling in the order in which spellings are sorted.
int compareBeginning(std::string_view text, std::string_view spelling, bool anyCase) {
  const std::size_t shared = std::min(text.size(), spelling.size());
  for (std::size_t i = 0; i < shared; ++i) {
    const auto one = static_cast<unsigned char>(anyCase ? base::lowerASCII(text[i]) : text[i]);
    const auto other = static_cast<unsigned char>(spelling[i]);
    if (one != other) return one < other ? -1 : 1;
  }
  return text.size() < spelling.size() ? -1 : 0;
}

}  // namespace

SecretIndex::SecretIndex(std::span<const std::string> secrets) {
  constexpr std::size_t kLongestStride = 4;
  std::size_t length = 0, shortest = kKeyBytes + kLongestStride;
  for (const std::string& secret : secrets) {
    length += secret.size();
    shortest = std::min(shortest, secret.size());
  }
  // No spelling is shorter than its secret, so one of so many places in a row begins a key.
  stride_ = std::min(kLongestStride, shortest - kKeyBytes + 1);
  // Once the bytes and the records are in their places they do not move: nothing is left behind.
  bytes_.reserve(length * 12 + secrets.size() * 24);
  spellings_.reserve(secrets.size() * 8 * stride_);
  for (const std::string& secret : secrets) addSpellings(secret);
  sort();
  makeTables();
}

SecretIndex::~SecretIndex() {
  wipe(bytes_);
  wipe(spellings_);
  wipe(groups_);
}

void SecretIndex::addSpellings(std::string_view secret) {
  hasBlanks_ = hasBlanks_ || secret.find(' ') != std::string_view::npos;
  addSpelling({}, secret);
  Spelling digits{};
  digits.anyCase = true;
  addSpelling(digits, base::hexText(secret));
  for (std::size_t shift = 0; shift < 3; ++shift) addBase64(secret, shift);
}

/// The digits that no neighbour has a say in, where so many bytes stand before the secret in its
/// group of three.
void SecretIndex::addBase64(std::string_view secret, std::size_t shift) {
  constexpr std::size_t kBitsOfByte = 8, kBitsOfDigit = 6;
  const std::size_t firstBit = shift * kBitsOfByte;
  const std::size_t lastBit = firstBit + secret.size() * kBitsOfByte;
  const std::size_t begin = (firstBit + kBitsOfDigit - 1) / kBitsOfDigit;
  const std::size_t end = lastBit / kBitsOfDigit;
  Spelling spelling{};
  spelling.sharesFirst = firstBit % kBitsOfDigit != 0;
  spelling.sharesLast = lastBit % kBitsOfDigit != 0;
  std::string digits =
      base::base64Text(std::string(shift, '\0') + std::string(secret)).substr(begin, end - begin);
  addSpelling(spelling, digits);
  const std::string plain = digits;
  std::ranges::replace(digits, '+', '-');
  std::ranges::replace(digits, '/', '_');
  if (digits != plain) addSpelling(spelling, digits);
}

void SecretIndex::addSpelling(Spelling spelling, std::string_view bytes) {
  spelling.begin = bytes_.size();
  spelling.length = bytes.size();
  spelling.parent = kNone;
  for (std::size_t offset = 0; offset < stride_; ++offset) {
    spelling.key = keyOfSix(bytes.data() + offset);
    spelling.offset = offset;
    spellings_.push_back(spelling);
  }
  bytes_ += bytes;
  longest_ = std::max(longest_, bytes.size() + 2);
}

std::string_view SecretIndex::bytesOf(const Spelling& spelling) const {
  return std::string_view(bytes_).substr(spelling.begin, spelling.length);
}

void SecretIndex::sort() {
  const auto place = [this](const Spelling& spelling) {
    return std::tuple(spelling.key, spelling.offset, spelling.anyCase, bytesOf(spelling));
  };
  std::sort(spellings_.begin(), spellings_.end(),
            [&](const Spelling& one, const Spelling& other) { return place(one) < place(other); });
  const auto isSamePart = [](const Spelling& one, const Spelling& other) {
    return one.key == other.key && one.offset == other.offset && one.anyCase == other.anyCase;
  };
  for (auto begin = spellings_.begin(); begin != spellings_.end();) {
    const auto end = std::find_if(begin, spellings_.end(),
                                  [&](const Spelling& one) { return !isSamePart(*begin, one); });
    addPart(static_cast<std::int32_t>(begin - spellings_.begin()),
            static_cast<std::int32_t>(end - spellings_.begin()));
    begin = end;
  }
}

/// Links the spellings of a part with their parents. What a spelling begins with stands before it
/// in the order, and so does all that lies between.
void SecretIndex::addPart(std::int32_t begin, std::int32_t end) {
  const auto record = [this](std::int32_t at) -> Spelling& {
    return spellings_[static_cast<std::size_t>(at)];
  };
  for (std::int32_t i = begin + 1; i < end; ++i) {
    Spelling& spelling = record(i);
    std::int32_t parent = i - 1;
    while (parent != kNone && !bytesOf(spelling).starts_with(bytesOf(record(parent))))
      parent = record(parent).parent;
    spelling.parent = parent;
    // The longest one is asked alone: it takes the digit before it for all.
    if (parent != kNone && record(parent).sharesFirst) spelling.sharesFirst = true;
  }
  const Spelling& first = record(begin);
  if (groups_.empty() || groups_.back().key != first.key)
    groups_.push_back({first.key, parts_.size(), parts_.size()});
  parts_.push_back({first.offset, first.anyCase, begin, end});
  groups_.back().end = parts_.size();
}

void SecretIndex::makeTables() {
  const int slotBits = bitsFor(groups_.size(), 2);
  const int beginBits = bitsFor(groups_.size(), 32);
  slotShift_ = 64 - slotBits;
  beginShift_ = 64 - beginBits;
  slots_.assign(std::size_t{1} << slotBits, kNone);
  begins_.assign((std::size_t{1} << beginBits) / 64, 0);
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    const std::uint64_t hash = hashOf(groups_[i].key);
    begins_[hash >> beginShift_ >> 6] |= std::uint64_t{1} << (hash >> beginShift_ & 63);
    std::size_t slot = hash >> slotShift_;
    while (slots_[slot] != kNone) slot = (slot + 1) % slots_.size();
    slots_[slot] = static_cast<std::int32_t>(i);
  }
}

const SecretIndex::Group* SecretIndex::groupOf(std::uint64_t key) const noexcept {
  for (std::size_t slot = hashOf(key) >> slotShift_; slots_[slot] != kNone;
       slot = (slot + 1) % slots_.size()) {
    const Group& group = groups_[static_cast<std::size_t>(slots_[slot])];
    if (group.key == key) return &group;
  }
  return nullptr;
}

std::optional<Place> SecretIndex::longestAt(std::string_view text, std::size_t at,
                                            const Part& part) const {
  const std::string_view rest = text.substr(at);
  // The last one that is not behind the text in the order is the longest that the text begins with,
  // or begins with that.
  const auto last =
      std::partition_point(spellings_.begin() + part.begin, spellings_.begin() + part.end,
                           [&](const Spelling& spelling) {
                             return compareBeginning(rest, bytesOf(spelling), part.anyCase) >= 0;
                           });
  auto i = static_cast<std::int32_t>(last - spellings_.begin()) - 1;
  if (i < part.begin) return std::nullopt;
  while (i != kNone) {
    const Spelling& spelling = spellings_[static_cast<std::size_t>(i)];
    if (compareBeginning(rest, bytesOf(spelling), part.anyCase) == 0) break;
    i = spelling.parent;
  }
  if (i == kNone) return std::nullopt;
  const Spelling& found = spellings_[static_cast<std::size_t>(i)];
  Place place{at, at + found.length};
  if (found.sharesFirst && at > 0 && isBase64Digit(text[at - 1])) --place.begin;
  if (found.sharesLast && place.end < text.size() && isBase64Digit(text[place.end])) ++place.end;
  return place;
}

void SecretIndex::addPlacesAt(std::string_view text, std::size_t at, std::uint64_t key,
                              std::vector<Place>& places) const {
  const Group* group = groupOf(key);
  if (group == nullptr) return;
  for (std::size_t i = group->begin; i < group->end; ++i) {
    const Part& part = parts_[i];
    if (part.offset > at) continue;
    if (const auto place = longestAt(text, at - part.offset, part)) places.push_back(*place);
  }
}

void SecretIndex::find(std::string_view text, std::vector<Place>& places) const {
  const std::uint64_t* const begins = begins_.data();
  const int shift = beginShift_;
  const std::size_t stride = stride_;
  std::size_t at = stride - 1;
  for (; at + 8 <= text.size(); at += stride) {
    const std::uint64_t key = keyOfEight(text.data() + at);
    const std::uint64_t bit = hashOf(key) >> shift;
    if ((begins[bit >> 6] >> (bit & 63) & 1) != 0) addPlacesAt(text, at, key, places);
  }
  for (; at + kKeyBytes <= text.size(); at += stride)
    addPlacesAt(text, at, keyOfSix(text.data() + at), places);
}

}  // namespace ORLFoundation::internal::logging
