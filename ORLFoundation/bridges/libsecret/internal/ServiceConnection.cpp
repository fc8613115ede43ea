#include <ORLFoundation/bridges/libsecret/internal/ServiceConnection.h>

#include <ORLFoundation/bridges/libsecret/internal/SecretServiceStatus.h>

#include <string_view>

namespace ORLFoundation::internal::libsecret {

void throwFailure(const ErrorSlot& error) {
  if (error.error() != nullptr) throw StatusFailure(statusOfError(*error.error()));
}

ServiceConnection::~ServiceConnection() {
  close();
  g_main_context_unref(context_);
}

void ServiceConnection::close() {
  service_.reset();
  owner_.reset();
  bus_.reset();
  drain();
}

void ServiceConnection::drain() {
  while (g_main_context_iteration(context_, FALSE) != FALSE) {
  }
}

VariantPointer ServiceConnection::call(const char* path, const char* interface, const char* method,
                                       GVariant* arguments, GCancellable* cancellable) const {
  ErrorSlot error;
  VariantPointer reply(g_dbus_connection_call_sync(
      bus_.get(), owner_.get(), path, interface, method, arguments, nullptr,
      G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, cancellable, error.slot()));
  throwFailure(error);
  return reply;
}

bool ServiceConnection::isOpen(GCancellable* cancellable) const {
  if (!service_ || !owner_ || g_dbus_connection_is_closed(bus_.get()) != FALSE) return false;
  const VariantPointer reply(g_dbus_connection_call_sync(
      bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
      "GetNameOwner", g_variant_new("(s)", g_dbus_proxy_get_name(G_DBUS_PROXY(service_.get()))),
      G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable, nullptr));
  if (!reply) return false;
  const char* name = nullptr;
  g_variant_get(reply.get(), "(&s)", &name);
  return std::string_view(name) == owner_.get();
}

void ServiceConnection::open(GCancellable* cancellable) {
  if (isOpen(cancellable)) return;
  close();
  bus_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
  if (!bus_ || g_dbus_connection_is_closed(bus_.get()) != FALSE)
    throw StatusFailure(errSecNotAvailable);
  g_dbus_connection_set_exit_on_close(bus_.get(), FALSE);
  ErrorSlot error;
  service_.reset(secret_service_open_sync(promptingServiceType(), nullptr,
                                          SECRET_SERVICE_OPEN_SESSION, cancellable, error.slot()));
  throwFailure(error);
  if (service_) owner_.reset(g_dbus_proxy_get_name_owner(G_DBUS_PROXY(service_.get())));
  if (!owner_) throw StatusFailure(errSecNotAvailable);
}

ServiceConnection::Use::Use(ServiceConnection& connection, const PromptPolicy& policy)
    : connection_(connection) {
  g_main_context_push_thread_default(connection_.context_);
  try {
    connection_.open(policy.deadline->cancellable());
  } catch (...) {
    connection_.close();
    g_main_context_pop_thread_default(connection_.context_);
    throw;
  }
  setPromptPolicy(connection_.service(), &policy);
}

ServiceConnection::Use::~Use() {
  setPromptPolicy(connection_.service(), nullptr);
  connection_.drain();
  g_main_context_pop_thread_default(connection_.context_);
}

}  // namespace ORLFoundation::internal::libsecret
