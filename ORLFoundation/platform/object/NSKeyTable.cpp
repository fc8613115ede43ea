
#include <ORLFoundation/platform/object/NSKeyTable.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

std::string_view nameOf(const NSKey& key) { return key.name; }

std::vector<NSKey> sorted(std::vector<NSKey> keys) {
  std::ranges::stable_sort(keys, {}, nameOf);
  return keys;
}

}  // namespace

NSKeyTable::NSKeyTable(std::vector<NSKey> keys) : keys_(sorted(std::move(keys))) {}

NSKeyTable::NSKeyTable(const NSKeyTable& base, std::vector<NSKey> keys)
    : NSKeyTable(std::move(keys)) {
  std::vector<NSKey> all = keys_;
  std::ranges::copy_if(base.keys_, std::back_inserter(all),
                       [this](const NSKey& key) { return find(key.name) == nullptr; });
  keys_ = sorted(std::move(all));
}

const NSKey* NSKeyTable::find(std::string_view name) const noexcept {
  const auto found = std::ranges::lower_bound(keys_, name, {}, nameOf);
  return found != keys_.end() && found->name == name ? &*found : nullptr;
}

void internal::object::raiseWrongKind(const id& value) {
  throw NSException(NSInvalidArgumentException,
                    value.isNil() ? std::string("nil is no value for a key of a plain type")
                                  : "a value of class " + value.className() +
                                        " is of the wrong kind for the key");
}

}  // namespace ORLFoundation
