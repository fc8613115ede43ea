

#include <ORLFoundation/platform/plist/PropertyListTable.h>

#include <ORLFoundation/platform/base/Bytes.h>

#include <algorithm>
#include <bit>
#include <limits>

namespace ORLFoundation::internal::plist {

double PropertyListTable::real(Index node) const noexcept {
  return std::bit_cast<double>(nodes_[node].bits);
}

std::string_view PropertyListTable::text(Index node) const noexcept {
  const Node& found = nodes_[node];
  return std::string_view(pool_).substr(found.bits, found.count);
}

std::span<const std::uint8_t> PropertyListTable::bytes(Index node) const noexcept {
  return base::bytesOf(text(node));
}

PropertyListTable::Indexes PropertyListTable::members(Index node) const noexcept {
  const Node& found = nodes_[node];
  return Indexes(members_).subspan(found.bits, found.count);
}

PropertyListTable::Indexes PropertyListTable::keys(Index node) const noexcept {
  return members(node);
}

PropertyListTable::Indexes PropertyListTable::values(Index node) const noexcept {
  const Node& found = nodes_[node];
  return Indexes(members_).subspan(found.bits + found.count, found.count);
}

std::optional<PropertyListTable::Index> PropertyListTable::valueForKey(
    Index node, std::string_view key) const noexcept {
  const Indexes all = keys(node);
  for (std::size_t entry = all.size(); entry-- > 0;)
    if (text(all[entry]) == key) return values(node)[entry];
  return std::nullopt;
}

PropertyListTable::Index PropertyListTable::add(PropertyListKind kind, std::size_t count,
                                                std::uint64_t bits) {
  constexpr std::size_t kMost = std::numeric_limits<Index>::max();
  if (count > kMost || nodes_.size() >= kMost) throw PropertyListFault("The list is too large.");
  nodes_.push_back({kind, static_cast<std::uint32_t>(count), bits});
  return static_cast<Index>(nodes_.size() - 1);
}

PropertyListTable::Index PropertyListTable::addScalar(PropertyListKind kind, std::uint64_t bits) {
  return add(kind, 0, bits);
}

PropertyListTable::Index PropertyListTable::addReal(PropertyListKind kind, double value) {
  return add(kind, 0, std::bit_cast<std::uint64_t>(value));
}

PropertyListTable::Index PropertyListTable::addUnsigned(std::uint64_t value) {
  const bool isSigned =
      value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return add(isSigned ? PropertyListKind::Integer : PropertyListKind::UnsignedInteger, 0, value);
}

PropertyListTable::Index PropertyListTable::addText(PropertyListKind kind, std::string_view text) {
  const Index node = add(kind, text.size(), pool_.size());
  pool_ += text;
  return node;
}

PropertyListTable::Index PropertyListTable::addArray(Indexes members) {
  const Index node = add(PropertyListKind::Array, members.size(), members_.size());
  members_.insert(members_.end(), members.begin(), members.end());
  return node;
}

PropertyListTable::Index PropertyListTable::addDictionary(Indexes keys, Indexes values) {
  const Index node = add(PropertyListKind::Dictionary, keys.size(), members_.size());
  members_.insert(members_.end(), keys.begin(), keys.end());
  members_.insert(members_.end(), values.begin(), values.end());
  return node;
}

void PropertyListTable::reserve(std::size_t nodes, std::size_t textBytes) {
  nodes_.reserve(nodes);
  pool_.reserve(textBytes);
}

// Visits each container once; what it learned of one is kept for the next reference to it.
class PropertyListTable::ShapeCheck {
 public:
  explicit ShapeCheck(const PropertyListTable& table) : table_(table), shapes_(table.nodeCount()) {}

  std::uint64_t expandedCount(Index node) { return visit(node, 0).expanded; }

 private:
  struct Shape {
    std::uint64_t expanded = 0;
    std::uint16_t height = 0;
    bool busy = false;
  };
  static constexpr std::uint64_t kMost = std::uint64_t{1} << 62;

  Shape visit(Index node, std::size_t depth) {
    if (!table_.isContainer(node)) return {.expanded = 1};
    Shape& shape = shapes_[node];
    if (shape.busy) throw PropertyListFault("A list holds itself.");
    if (depth + std::max<std::size_t>(shape.height, 1) > kDeepestNesting)
      throw PropertyListFault("The list is nested too deep.");
    if (shape.expanded != 0) return shape;

    shape.busy = true;
    Shape found{.expanded = 1, .height = 1};
    if (table_.kind(node) == PropertyListKind::Dictionary)
      found.expanded += table_.keys(node).size();
    for (const Index member : childrenOf(node)) {
      const Shape child = visit(member, depth + 1);
      found.expanded = std::min(kMost, found.expanded + child.expanded);
      found.height =
          std::max<std::uint16_t>(found.height, static_cast<std::uint16_t>(child.height + 1));
    }
    return shapes_[node] = found;
  }

  [[nodiscard]] Indexes childrenOf(Index node) const noexcept {
    return table_.kind(node) == PropertyListKind::Array ? table_.members(node)
                                                        : table_.values(node);
  }

  const PropertyListTable& table_;
  std::vector<Shape> shapes_;
};

std::uint64_t PropertyListTable::expandedCount() const {
  return ShapeCheck(*this).expandedCount(top_);
}

}  // namespace ORLFoundation::internal::plist
