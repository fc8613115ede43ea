/// Builds a table in which equal numbers, dates, references and short texts stand once. Long texts
/// do not: what is written here stays within what readers take of repeated text.
#pragma once

#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/plist/PropertyListTable.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::plist {

class PropertyListBuilder {
 public:
  using Index = PropertyListTable::Index;

  PropertyListBuilder();

  Index boolean(bool value) { return unique(PropertyListKind::Boolean, value ? 1 : 0); }
  Index integer(std::int64_t value) {
    return unique(PropertyListKind::Integer, static_cast<std::uint64_t>(value));
  }
  Index unsignedInteger(std::uint64_t value);
  Index real(double value);
  /// In the form of its kind; a decimal as the nearest real.
  Index number(const NSNumber& value);
  Index date(double seconds);
  Index uid(Index value) { return unique(PropertyListKind::UID, value); }
  /// Throws `PropertyListFault` for a text that is not UTF-8.
  Index string(std::string_view text);
  Index data(std::string_view bytes) { return uniqueText(PropertyListKind::Data, bytes); }
  Index array(PropertyListTable::Indexes members) { return table_.addArray(members); }
  Index dictionary(PropertyListTable::Indexes keys, PropertyListTable::Indexes values) {
    return table_.addDictionary(keys, values);
  }

  [[nodiscard]] const PropertyListTable& table() const noexcept { return table_; }
  void setTop(Index top) noexcept { table_.setTop(top); }

 private:
  struct Slot {
    std::size_t hash = 0;
    Index node = kEmpty;
  };
  static constexpr Index kEmpty = UINT32_MAX;
  static constexpr std::size_t kLongestShared = PropertyListTextBudget::kMostReuse;

  Index unique(PropertyListKind kind, std::uint64_t bits);
  Index uniqueText(PropertyListKind kind, std::string_view text);
  template <class Same, class Add>
  Index findOrAdd(std::size_t hash, Same&& same, Add&& add);
  void grow();

  PropertyListTable table_;
  std::vector<Slot> slots_;  // a power of two of them, at most half in use
  std::size_t used_ = 0;
};

}  // namespace ORLFoundation::internal::plist
