/// A keyed archive that is open for reading: its table of objects, and the class of each.
#pragma once

#include <ORLFoundation/platform/archive/NSCodingClass.h>
#include <ORLFoundation/platform/plist/PropertyListTable.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::archive {

using plist::PropertyListTable;

class ArchiveDocument {
 public:
  using Index = PropertyListTable::Index;

  /// Throws `PropertyListFault` for data that is no keyed archive.
  explicit ArchiveDocument(const NSData& data);

  [[nodiscard]] const PropertyListTable& table() const noexcept { return table_; }
  /// The dictionary of what stands outermost.
  [[nodiscard]] Index top() const noexcept { return top_; }
  [[nodiscard]] std::size_t objectCount() const noexcept { return table_.members(objects_).size(); }
  /// The entry of an object; the index is below the count.
  [[nodiscard]] Index entry(Index uid) const noexcept { return table_.members(objects_)[uid]; }
  /// Whether the entry stands for nil.
  [[nodiscard]] bool isNull(Index uid) const noexcept;

  /// The class of an object. A direct text, number or data has the class of its kind. Throws for an
  /// object without a class, and for a class that nobody defined.
  [[nodiscard]] const NSCodingClass& classOf(Index uid);

 private:
  [[nodiscard]] const NSCodingClass& classDescribedAt(Index uid);

  PropertyListTable table_;
  Index top_ = 0;
  Index objects_ = 0;
  std::vector<const NSCodingClass*> classes_;  // by the index of the description, once found
};

}  // namespace ORLFoundation::internal::archive
