#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>

#include <ORLFoundation/bridges/libsecret/internal/DefaultCollection.h>
#include <ORLFoundation/bridges/libsecret/internal/SecretServiceStatus.h>
#include <ORLFoundation/bridges/libsecret/internal/ServiceConnection.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace ORLFoundation {

using namespace internal::keychain;
using namespace internal::libsecret;

namespace {

bool hasDisplay() {
  const auto isNamed = [](const char* variable) {
    const char* display = std::getenv(variable);
    return display != nullptr && *display != '\0';
  };
  return isNamed("DISPLAY") || isNamed("WAYLAND_DISPLAY");
}

}  // namespace

/// What operations share: the way to the service, kept from one to the next.
struct SecretServiceItemStore::Connection {
  explicit Connection(const SecretServiceOptions& given)
      : options(given), mayPrompt(given.mayPrompt.value_or(hasDisplay())) {}

  /// The work's status, or that of the failure that ends it.
  template <class Work>
  OSStatus perform(const Work& work) {
    const std::lock_guard guard(lock);
    CallDeadline deadline(options.limit);
    const PromptPolicy policy{mayPrompt, options.promptLimit, &deadline};
    try {
      const ServiceConnection::Use use(service, policy);
      return work(DefaultCollection(service, deadline.cancellable()));
    } catch (const StatusFailure& failure) {
      // Whatever it was, the next operation finds its way anew.
      service.close();
      return failure.status;
    }
  }

  const SecretServiceOptions options;
  const bool mayPrompt;
  std::mutex lock;
  ServiceConnection service;
};

SecretServiceItemStore::SecretServiceItemStore(const SecretServiceOptions& options)
    : connection_(std::make_unique<Connection>(options)) {}

SecretServiceItemStore::~SecretServiceItemStore() = default;

void SecretServiceItemStore::registerStore() {
  SecRegisterItemStore("secret-service", [] { return std::make_shared<SecretServiceItemStore>(); });
}

SecItemBackend SecretServiceItemStore::backend() const {
  return {"secret-service", true, SecItemEncryptionUnknown};
}

OSStatus SecretServiceItemStore::copyMatching(const NSDictionary& query, id& result) {
  result = nullptr;
  const std::optional<ItemQuery> asked = itemQueryIn(query);
  if (!asked) return errSecParam;
  return connection_->perform([&](const DefaultCollection& collection) -> OSStatus {
    std::vector<StoredItem> items = collection.find(*asked);
    if (items.empty()) return errSecItemNotFound;
    if (!asked->wantsAll) items.erase(items.begin() + 1, items.end());
    std::vector<ItemRecord> records;
    for (StoredItem& item : items) {
      if (asked->returnsData) collection.load(item);
      records.push_back(std::move(item.record));
    }
    result = asked->resultFor(records);
    return errSecSuccess;
  });
}

OSStatus SecretServiceItemStore::add(const NSDictionary& attributes) {
  const std::optional<ItemRecord> item = itemRecordIn(attributes);
  if (!item) return errSecParam;
  return connection_->perform([&item](const DefaultCollection& collection) -> OSStatus {
    const std::vector<StoredItem> others =
        collection.find(ItemQuery{item->texts, item->isSynchronizable});
    if (std::ranges::any_of(
            others, [&item](const StoredItem& other) { return other.record.isDuplicateOf(*item); }))
      return errSecDuplicateItem;
    collection.create(*item);
    return errSecSuccess;
  });
}

OSStatus SecretServiceItemStore::update(const NSDictionary& query,
                                        const NSDictionary& attributesToUpdate) {
  const std::optional<ItemQuery> asked = itemQueryIn(query);
  const std::optional<ItemChange> change = itemChangeIn(attributesToUpdate);
  if (!asked || !change) return errSecParam;
  return connection_->perform([&](const DefaultCollection& collection) -> OSStatus {
    std::vector<StoredItem> items = collection.find(*asked);
    for (StoredItem& item : items) collection.change(item, *change);
    return items.empty() ? errSecItemNotFound : errSecSuccess;
  });
}

OSStatus SecretServiceItemStore::remove(const NSDictionary& query) {
  const std::optional<ItemQuery> asked = itemQueryIn(query);
  if (!asked) return errSecParam;
  return connection_->perform([&asked](const DefaultCollection& collection) -> OSStatus {
    const std::vector<StoredItem> items = collection.find(*asked);
    for (const StoredItem& item : items) collection.erase(item);
    return items.empty() ? errSecItemNotFound : errSecSuccess;
  });
}

}  // namespace ORLFoundation
