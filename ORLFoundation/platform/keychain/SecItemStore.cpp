#include <ORLFoundation/platform/keychain/SecItemStore.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>

#include <map>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

std::shared_ptr<SecItemStore> makeNone() { return std::make_shared<SecFailingItemStore>(); }

constinit internal::base::Replaceable<SecItemStore> currentStore(&makeNone);

struct Registry {
  std::mutex lock;
  std::map<std::string, SecItemStoreMaker, std::less<>> makers{
      {"in-process", [] { return std::make_shared<SecInProcessItemStore>(); }},
      {"none", &makeNone},
  };
};

/// Never destroyed, for what runs while the process ends.
Registry& registry() {
  static auto* const made = new Registry;
  return *made;
}

std::string_view wordsFor(SecItemEncryption encryption) {
  return encryption == SecItemEncryptionNothingKept ? "nothing is kept on a disk"
                                                    : "encryption at rest unknown";
}

}  // namespace

std::string SecItemBackend::description() const {
  return name + (isLasting ? " (lasting, " : " (not lasting, ") +
         std::string(wordsFor(encryptionAtRest)) + ")";
}

SecItemBackend SecFailingItemStore::backend() const {
  return {"none", false, SecItemEncryptionNothingKept};
}

OSStatus SecFailingItemStore::copyMatching(const NSDictionary&, id& result) {
  result = nullptr;
  return status_;
}

OSStatus SecFailingItemStore::add(const NSDictionary&) { return status_; }

OSStatus SecFailingItemStore::update(const NSDictionary&, const NSDictionary&) { return status_; }

OSStatus SecFailingItemStore::remove(const NSDictionary&) { return status_; }

std::shared_ptr<SecItemStore> SecCurrentItemStore() { return currentStore.current(); }

std::shared_ptr<SecItemStore> SecSetItemStore(std::shared_ptr<SecItemStore> store) {
  return currentStore.exchangeMade(std::move(store));
}

void SecRegisterItemStore(std::string_view name, SecItemStoreMaker maker) {
  Registry& known = registry();
  const std::lock_guard guard(known.lock);
  known.makers.insert_or_assign(std::string(name), std::move(maker));
}

std::shared_ptr<SecItemStore> SecItemStoreNamed(std::string_view name) {
  Registry& known = registry();
  SecItemStoreMaker maker;
  {
    const std::lock_guard guard(known.lock);
    const auto found = known.makers.find(name);
    if (found != known.makers.end()) maker = found->second;
  }
  return maker ? maker() : nullptr;
}

std::vector<std::string> SecItemStoreNames() {
  Registry& known = registry();
  const std::lock_guard guard(known.lock);
  std::vector<std::string> names;
  names.reserve(known.makers.size());
  for (const auto& [name, maker] : known.makers) names.push_back(name);
  return names;
}

}  // namespace ORLFoundation
