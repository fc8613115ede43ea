#include <ORLFoundation/bridges/libsecret/internal/RunningPrompt.h>

#include <ORLFoundation/bridges/libsecret/internal/PromptingService.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::libsecret {
namespace {

constexpr const char* kPromptInterface = "org.freedesktop.Secret.Prompt";
constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
/// What GNOME Keyring asks by. Where it is missing each question is dismissed at once.
constexpr const char* kPrompterName = "org.gnome.keyring.SystemPrompter";
constexpr int kBusLimit = 500;  // milliseconds

/// Whether a name is among those that a method of the bus lists.
bool lists(GDBusConnection* bus, const char* method, std::string_view name) {
  const VariantPointer reply(g_dbus_connection_call_sync(
      bus, kBus, kBusPath, kBus, method, nullptr, G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE,
      kBusLimit, nullptr, nullptr));
  if (!reply) return false;
  const VariantPointer names(g_variant_get_child_value(reply.get(), 0));
  for (gsize i = 0; i < g_variant_n_children(names.get()); ++i) {
    const char* one = nullptr;
    g_variant_get_child(names.get(), i, "&s", &one);
    if (name == one) return true;
  }
  return false;
}

struct FreeError {
  void operator()(GError* error) const { g_error_free(error); }
};
using ErrorPointer = std::unique_ptr<GError, FreeError>;

struct DestroySource {
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
};

class RunningPrompt : public std::enable_shared_from_this<RunningPrompt> {
 public:
  RunningPrompt(ObjectPointer<GTask> task, SecretPrompt* prompt, const GVariantType* returnType)
      : task_(std::move(task)), prompt_(G_DBUS_PROXY(g_object_ref(prompt))) {
    if (returnType != nullptr)
      type_.assign(g_variant_type_peek_string(returnType),
                   g_variant_type_get_string_length(returnType));
  }

  void begin(GCancellable* cancellable) {
    const TextPointer owner(g_dbus_proxy_get_name_owner(prompt_.get()));
    subscriptions_ = {
        subscribe(owner.get(), kPromptInterface, "Completed",
                  g_dbus_proxy_get_object_path(prompt_.get()), nullptr, &onCompleted),
        subscribe(kBus, kBus, "NameOwnerChanged", kBusPath, owner.get(), &onOwnerChanged)};
    if (cancellable != nullptr) {
      timeout_.reset(g_cancellable_source_new(cancellable));
      g_source_set_callback(timeout_.get(), G_SOURCE_FUNC(&onTimeout), holder(), &release);
      g_source_attach(timeout_.get(), g_main_context_get_thread_default());
    }
    g_dbus_proxy_call(prompt_.get(), "Prompt", g_variant_new("(s)", ""),
                      G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, showing_.get(), &onShown, holder());
  }

 private:
  using Holder = std::shared_ptr<RunningPrompt>;

  /// What a callback is given; `release` frees it.
  [[nodiscard]] gpointer holder() { return new Holder(shared_from_this()); }
  static void release(gpointer held) { delete static_cast<Holder*>(held); }
  /// A copy, so that it stays while its callback ends it.
  static Holder held(gpointer data) { return *static_cast<Holder*>(data); }

  guint subscribe(const char* sender, const char* interface, const char* signal, const char* path,
                  const char* argument, GDBusSignalCallback callback) {
    return g_dbus_connection_signal_subscribe(
        g_dbus_proxy_get_connection(prompt_.get()), sender, interface, signal, path, argument,
        G_DBUS_SIGNAL_FLAGS_NONE, callback, holder(), &release);
  }

  static void onCompleted(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                          GVariant* arguments, gpointer data) {
    held(data)->complete(arguments);
  }
  static void onOwnerChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                             const gchar*, GVariant*, gpointer data) {
    held(data)->fail(g_error_new_literal(G_IO_ERROR, G_IO_ERROR_CLOSED, "The service has gone."));
  }
  static gboolean onTimeout(GCancellable*, gpointer data) {
    const Holder self = held(data);
    dismissPrompt(self->prompt_.get());
    self->fail(g_error_new_literal(G_IO_ERROR, G_IO_ERROR_CANCELLED, "Nobody answered in time."));
    return G_SOURCE_REMOVE;
  }
  static void onShown(GObject* prompt, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Holder> self(static_cast<Holder*>(data));
    GError* error = nullptr;
    const VariantPointer reply(g_dbus_proxy_call_finish(G_DBUS_PROXY(prompt), result, &error));
    (*self)->isAnswered_ = true;
    ErrorPointer owned(error);
    if ((*self)->isEnded_) return (*self)->finish();
    if (owned) (*self)->fail(owned.release());
  }

  void complete(GVariant* arguments) {
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(bv)")) == FALSE) return failOddly();
    gboolean isDismissed = FALSE;
    GVariant* value = nullptr;
    g_variant_get(arguments, "(bv)", &isDismissed, &value);
    VariantPointer owned(value);
    const bool isOfType = std::string_view(g_variant_get_type_string(value)) == type_;
    if (isDismissed != FALSE) return failDismissed(isOfType);
    if (!isOfType && !type_.empty()) return failOddly();
    end(nullptr, std::move(owned));
  }
  /// GNOME Keyring gives a value of the expected type with what is dismissed, others do not.
  void failDismissed(bool mayBeKeyring) {
    GDBusConnection* const bus = g_dbus_proxy_get_connection(prompt_.get());
    const bool isAsked = !mayBeKeyring || lists(bus, "ListNames", kPrompterName) ||
                         lists(bus, "ListActivatableNames", kPrompterName);
    fail(isAsked
             ? g_error_new_literal(promptErrorDomain(), kPromptDismissed, "The user declined.")
             : g_error_new_literal(promptErrorDomain(), kPromptRefused, "Nobody can be asked."));
  }
  void failOddly() {
    fail(g_error_new_literal(G_IO_ERROR, G_IO_ERROR_INVALID_DATA, "The prompt ended oddly."));
  }
  void fail(GError* error) { end(ErrorPointer(error), nullptr); }
  /// What ends it first counts. Nothing of it is left behind in the context: a call that is not
  /// answered yet is cancelled first.
  void end(ErrorPointer error, VariantPointer value) {
    if (std::exchange(isEnded_, true)) return;
    error_ = std::move(error);
    value_ = std::move(value);
    timeout_.reset();
    for (const guint number : subscriptions_)
      g_dbus_connection_signal_unsubscribe(g_dbus_proxy_get_connection(prompt_.get()), number);
    if (isAnswered_) return finish();
    g_cancellable_cancel(showing_.get());
  }
  void finish() {
    if (error_) return g_task_return_error(task_.get(), error_.release());
    g_task_return_pointer(task_.get(), value_.release(),
                          [](gpointer held) { g_variant_unref(static_cast<GVariant*>(held)); });
  }

  const ObjectPointer<GTask> task_;
  const ObjectPointer<GDBusProxy> prompt_;
  std::string type_;
  std::array<guint, 2> subscriptions_{};
  std::unique_ptr<GSource, DestroySource> timeout_;
  const ObjectPointer<GCancellable> showing_{g_cancellable_new()};
  bool isAnswered_ = false, isEnded_ = false;
  ErrorPointer error_;
  VariantPointer value_;
};

}  // namespace

void dismissPrompt(GDBusProxy* prompt) {
  const VariantPointer reply(g_dbus_proxy_call_sync(
      prompt, "Dismiss", nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, kBusLimit, nullptr, nullptr));
}

void runPrompt(ObjectPointer<GTask> task, SecretPrompt* prompt, const GVariantType* returnType,
               GCancellable* cancellable) {
  std::make_shared<RunningPrompt>(std::move(task), prompt, returnType)->begin(cancellable);
}

}  // namespace ORLFoundation::internal::libsecret
