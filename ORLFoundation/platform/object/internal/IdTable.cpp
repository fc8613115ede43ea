

#include <ORLFoundation/platform/object/internal/IdTable.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace ORLFoundation::internal::object {
namespace {

constexpr std::size_t kFewestSlots = 8;

/// Spreads hashes that differ in few bits over all slots.
std::size_t spread(NSUInteger hash) {
  hash ^= hash >> 32;
  hash *= 0x9e3779b97f4a7c15U;
  return static_cast<std::size_t>(hash ^ (hash >> 29));
}

}  // namespace

std::size_t IdTable::findSlot(const id& key, NSUInteger hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = spread(hash) & mask;
  for (; slots_[at] != kEmpty; at = (at + 1) & mask) {
    const Entry& entry = entries_[slots_[at] - 1];
    if (entry.hash == hash && !entry.key.isNil() && entry.key.isEqual(key)) break;
  }
  return at;
}

const IdTable::Entry* IdTable::find(const id& key) const {
  if (count_ == 0 || key.isNil()) return nullptr;
  const Slot slot = slots_[findSlot(key, key.hash())];
  return slot == kEmpty ? nullptr : &entries_[slot - 1];
}

void IdTable::set(const id& key, id value) {
  if ((entries_.size() + 1) * 2 > slots_.size()) rebuild();
  const NSUInteger hash = key.hash();
  const std::size_t at = findSlot(key, hash);
  if (slots_[at] != kEmpty) {
    std::swap(entries_[slots_[at] - 1].value, value);
    return;
  }
  entries_.push_back({key, std::move(value), hash});
  slots_[at] = static_cast<Slot>(entries_.size());
  ++count_;
  ++mutations_;
}

void IdTable::remove(const id& key) {
  if (count_ == 0 || key.isNil()) return;
  const Slot slot = slots_[findSlot(key, key.hash())];
  if (slot == kEmpty) return;
  --count_;
  ++mutations_;
  // The slot goes on pointing at the entry, so that probes behind it are still found. What the
  // entry held is let go last: it may look into this table while it is destroyed.
  const Entry removed = std::exchange(entries_[slot - 1], Entry());
}

void IdTable::clear() {
  slots_.clear();
  count_ = 0;
  ++mutations_;
  const std::vector<Entry> removed = std::exchange(entries_, {});
}

std::size_t IdTable::copyKeys(std::size_t& position, std::span<id> keys) const {
  std::size_t copied = 0;
  for (; position < entries_.size() && copied < keys.size(); ++position) {
    const id& key = entries_[position].key;
    if (!key.isNil()) keys[copied++] = key;
  }
  return copied;
}

void IdTable::rebuild() {
  std::erase_if(entries_, [](const Entry& entry) { return entry.key.isNil(); });
  slots_.assign(std::bit_ceil(std::max(kFewestSlots, (entries_.size() + 1) * 4)), kEmpty);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    std::size_t at = spread(entries_[i].hash) & mask;
    while (slots_[at] != kEmpty) at = (at + 1) & mask;
    slots_[at] = static_cast<Slot>(i + 1);
  }
}

}  // namespace ORLFoundation::internal::object
