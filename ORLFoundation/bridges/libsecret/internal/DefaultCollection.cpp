#include <ORLFoundation/bridges/libsecret/internal/DefaultCollection.h>

#include <ORLFoundation/bridges/libsecret/internal/SecretServiceStatus.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <libsecret/secret.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::libsecret {

using namespace keychain;

namespace {

constexpr const char* kCollection = "org.freedesktop.Secret.Collection";
constexpr const char* kItem = "org.freedesktop.Secret.Item";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

struct UnrefSecret {
  void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using SecretPointer = std::unique_ptr<SecretValue, UnrefSecret>;

struct FreeTexts {
  void operator()(gchar** texts) const { g_strfreev(texts); }
};
using TextsPointer = std::unique_ptr<gchar*, FreeTexts>;

SecretPointer secretOf(const NSData& data) {
  const std::string_view bytes = data.text();
  const char* const kind = base::isUTF8(bytes) ? "text/plain" : "application/octet-stream";
  return SecretPointer(
      secret_value_new(bytes.empty() ? "" : bytes.data(), static_cast<gssize>(bytes.size()), kind));
}

/// Not yet counted, as calls take their arguments.
GVariant* variantOf(const Attributes& attributes) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
  for (const auto& [name, value] : attributes)
    g_variant_builder_add(&builder, "{ss}", name.c_str(), value.c_str());
  return g_variant_builder_end(&builder);
}

Attributes attributesIn(GVariant* properties) {
  Attributes attributes;
  const VariantPointer found(
      g_variant_lookup_value(properties, "Attributes", G_VARIANT_TYPE("a{ss}")));
  if (!found) return attributes;
  GVariantIter iterator;
  g_variant_iter_init(&iterator, found.get());
  const char* name = nullptr;
  const char* value = nullptr;
  while (g_variant_iter_next(&iterator, "{&s&s}", &name, &value) != FALSE)
    attributes.insert_or_assign(name, value);
  return attributes;
}

/// The only value of a reply. Throws `StatusFailure` for a reply of another kind.
VariantPointer onlyValue(const VariantPointer& reply, const char* type) {
  if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE(type)) == FALSE)
    throw StatusFailure(errSecIO);
  return VariantPointer(g_variant_get_child_value(reply.get(), 0));
}

}  // namespace

DefaultCollection::DefaultCollection(const ServiceConnection& connection, GCancellable* cancellable)
    : connection_(connection), cancellable_(cancellable) {
  ErrorSlot error;
  const TextPointer path(secret_service_read_alias_dbus_path_sync(
      connection.service(), SECRET_COLLECTION_DEFAULT, cancellable, error.slot()));
  throwFailure(error);
  path_ = path ? path.get() : "";
  // The collection at this path ends with the session.
  if (path_.size() < 2 || path_.ends_with("/collection/session"))
    throw StatusFailure(errSecNoDefaultKeychain);
  if (isLocked()) unlock(path_);
}

bool DefaultCollection::isLocked() const {
  const VariantPointer value =
      onlyValue(connection_.call(path_.c_str(), kProperties, "Get",
                                 g_variant_new("(ss)", kCollection, "Locked"), cancellable_),
                "(v)");
  const VariantPointer inside(g_variant_get_variant(value.get()));
  return g_variant_is_of_type(inside.get(), G_VARIANT_TYPE_BOOLEAN) != FALSE &&
         g_variant_get_boolean(inside.get()) != FALSE;
}

void DefaultCollection::unlock(const std::string& path) const {
  std::array<const gchar*, 2> paths{path.c_str(), nullptr};
  gchar** unlocked = nullptr;
  ErrorSlot error;
  const gint count = secret_service_unlock_dbus_paths_sync(connection_.service(), paths.data(),
                                                           cancellable_, &unlocked, error.slot());
  const TextsPointer freed(unlocked);
  throwFailure(error);
  // A service without a prompter says that it is done, and has unlocked nothing.
  if (count < 1) throw StatusFailure(errSecInteractionNotAllowed);
}

StoredItem DefaultCollection::itemAt(const char* path) const {
  const VariantPointer properties = onlyValue(
      connection_.call(path, kProperties, "GetAll", g_variant_new("(s)", kItem), cancellable_),
      "(a{sv})");
  gboolean isLocked = FALSE;
  g_variant_lookup(properties.get(), "Locked", "b", &isLocked);
  return StoredItem(path, attributesIn(properties.get()), isLocked != FALSE);
}

std::vector<StoredItem> DefaultCollection::find(const ItemQuery& query) const {
  GVariant* sought = variantOf(attributesOf(query));
  const VariantPointer paths =
      onlyValue(connection_.call(path_.c_str(), kCollection, "SearchItems",
                                 g_variant_new_tuple(&sought, 1), cancellable_),
                "(ao)");
  std::vector<StoredItem> items;
  for (gsize i = 0; i < g_variant_n_children(paths.get()); ++i) {
    const char* path = nullptr;
    g_variant_get_child(paths.get(), i, "&o", &path);
    StoredItem item = itemAt(path);
    if (query.matches(item.record)) items.push_back(std::move(item));
  }
  std::ranges::sort(items, {}, &StoredItem::added);
  return items;
}

void DefaultCollection::load(StoredItem& item) const {
  if (item.isLocked) unlock(item.path);
  ErrorSlot error;
  const SecretPointer value(secret_service_get_secret_for_dbus_path_sync(
      connection_.service(), item.path.c_str(), cancellable_, error.slot()));
  throwFailure(error);
  if (!value) throw StatusFailure(errSecIO);
  gsize length = 0;
  const gchar* bytes = secret_value_get(value.get(), &length);
  item.record.data = NSData::dataWipedAtRelease(std::vector<std::uint8_t>(bytes, bytes + length));
}

void DefaultCollection::create(const ItemRecord& record) const {
  const std::unique_ptr<GHashTable, decltype(&g_hash_table_unref)> properties(
      g_hash_table_new_full(&g_str_hash, &g_str_equal, nullptr,
                            [](gpointer value) { g_variant_unref(static_cast<GVariant*>(value)); }),
      &g_hash_table_unref);
  const auto put = [&properties](const char* name, GVariant* value) {
    g_hash_table_insert(properties.get(), const_cast<char*>(name), g_variant_ref_sink(value));
  };
  put("org.freedesktop.Secret.Item.Label", g_variant_new_string(labelOf(record).c_str()));
  put("org.freedesktop.Secret.Item.Attributes", variantOf(attributesOf(record, nextPlace())));
  ErrorSlot error;
  const TextPointer made(secret_service_create_item_dbus_path_sync(
      connection_.service(), path_.c_str(), properties.get(), secretOf(record.data).get(),
      SECRET_ITEM_CREATE_NONE, cancellable_, error.slot()));
  throwFailure(error);
  if (!made) throw StatusFailure(errSecIO);
}

void DefaultCollection::change(StoredItem& item, const ItemChange& change) const {
  if (item.isLocked) unlock(item.path);
  if (change.accessible && change.accessible != item.record.accessible) {
    item.record.accessible = change.accessible;
    static_cast<void>(
        connection_.call(item.path.c_str(), kProperties, "Set",
                         g_variant_new("(ssv)", kItem, "Attributes",
                                       variantOf(attributesOf(item.record, item.added))),
                         cancellable_));
  }
  if (change.data) {
    GVariant* secret =
        secret_service_encode_dbus_secret(connection_.service(), secretOf(*change.data).get());
    static_cast<void>(connection_.call(item.path.c_str(), kItem, "SetSecret",
                                       g_variant_new_tuple(&secret, 1), cancellable_));
  }
}

void DefaultCollection::erase(const StoredItem& item) const {
  ErrorSlot error;
  secret_service_delete_item_dbus_path_sync(connection_.service(), item.path.c_str(), cancellable_,
                                            error.slot());
  throwFailure(error);
}

}  // namespace ORLFoundation::internal::libsecret
