#include <ORLFoundation/interchange/tabular/ORLFTabularRows.h>

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <algorithm>
#include <functional>

namespace ORLFoundation {
namespace {

/// Fields of a block: large enough to cost little, small enough to be taken from the heap.
constexpr std::size_t kFieldsOfABlock = 4096;

bool isViewOf(std::string_view text, std::string_view view) {
  return std::less_equal<>()(text.data(), view.data()) &&
         std::less<>()(view.data(), text.data() + text.size());
}

}  // namespace

ORLFTabularRows::ORLFTabularRows(std::string_view text, char separator)
    : text_(text.begin(), text.end()) {
  const std::string_view kept(text_.data(), text_.size());
  orlfEnumerateTabularRows(kept, separator, [this, kept](const ORLFTabularRow& row, bool&) {
    auto& block = blockFor(row.fields.size());
    const std::size_t first = block.size();
    for (const std::string_view field : row.fields)
      block.push_back(field.empty() || isViewOf(kept, field) ? field : joined_.emplace_back(field));
    rows_.emplace_back(block.data() + first, row.fields.size());
  });
}

/// A block with room for so many fields, which never grows.
std::vector<std::string_view>& ORLFTabularRows::blockFor(std::size_t count) {
  if (fields_.empty() || fields_.back().capacity() - fields_.back().size() < count)
    fields_.emplace_back().reserve(std::max(kFieldsOfABlock, count));
  return fields_.back();
}

}  // namespace ORLFoundation
