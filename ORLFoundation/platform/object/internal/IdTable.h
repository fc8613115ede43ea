/// The hash table under dictionaries and sets: entries in a flat list in order of addition, and an
/// index of slots into that list, probed one after the other.
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ORLFoundation::internal::object {

class IdTable {
 public:
  struct Entry {
    id key;  // nil marks an entry that was removed
    id value;
    NSUInteger hash = 0;
  };

  [[nodiscard]] std::size_t count() const noexcept { return count_; }
  /// The entry of an equal key, null when there is none.
  [[nodiscard]] const Entry* find(const id& key) const;
  /// The key must not be nil. An equal key stays as it was first given.
  void set(const id& key, id value);
  void remove(const id& key);
  void clear();

  /// Copies the next keys into `keys` and answers how many; `position` begins at 0 and says where
  /// to go on.
  std::size_t copyKeys(std::size_t& position, std::span<id> keys) const;
  /// Grows with every key that comes or goes.
  [[nodiscard]] std::size_t mutations() const noexcept { return mutations_; }

  template <class Visit>
  void forEach(Visit&& visit) const {
    for (const Entry& entry : entries_)
      if (!entry.key.isNil()) visit(entry);
  }

 private:
  using Slot = std::uint32_t;
  static constexpr Slot kEmpty = 0;  // else the entry's index plus one

  [[nodiscard]] std::size_t findSlot(const id& key, NSUInteger hash) const;
  void rebuild();

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;  // a power of two of them, at most half in use
  std::size_t count_ = 0;
  std::size_t mutations_ = 0;
};

}  // namespace ORLFoundation::internal::object
