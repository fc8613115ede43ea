/// A Secret Service of a test's own on a private bus: one collection, one item, and prompts that
/// end as a script tells. It answers on a thread of its own.
#pragma once

#include <ORLFoundation/bridges/libsecret/PrivateSession_testing.h>

#include <future>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {

/// How the user answers, or the service ends the question: with a value of another type, or by
/// going away.
enum class ScriptedPrompt { Confirmed, Dismissed, Unanswered, Odd, Gone };

struct SecretServiceScript {
  std::string defaultCollection = "/org/freedesktop/secrets/collection/login";
  bool isLocked = false;
  /// The methods that ask the user first: "Unlock", "CreateItem", "Delete".
  std::set<std::string> asking = {};
  ScriptedPrompt prompt = ScriptedPrompt::Confirmed;
  /// A dismissal comes with a value of the expected type, as GNOME Keyring's does.
  bool dismissesAsKeyring = false;
  /// What GNOME Keyring asks by is on the bus.
  bool hasPrompter = false;
  /// A method that fails, and its error.
  std::string failing = {};
  const char* failure = "org.freedesktop.DBus.Error.AccessDenied";
};

class ScriptedSecretService {
 public:
  ScriptedSecretService(const PrivateSessionBus& bus, SecretServiceScript script)
      : bus_(bus), script_(std::move(script)), own_(bus.connectAgain()) {
    std::promise<void> isReady;
    thread_ = std::thread([this, &isReady] { serve(isReady); });
    isReady.get_future().wait();
    bus_.awaitName(kSecretsName, true);
  }
  ~ScriptedSecretService() {
    g_main_loop_quit(loop_);
    thread_.join();
    bus_.awaitName(kSecretsName, false);
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }
  ScriptedSecretService(const ScriptedSecretService&) = delete;
  ScriptedSecretService& operator=(const ScriptedSecretService&) = delete;

  /// Whether a method was called.
  [[nodiscard]] bool wasCalled(std::string_view method) const {
    const std::lock_guard guard(lock_);
    return calls_.contains(std::string(method));
  }
  [[nodiscard]] const SecretServiceScript& script() const { return script_; }

 private:
  static constexpr const char* kCollectionPath = "/org/freedesktop/secrets/collection/login";
  static constexpr const char* kItemPath = "/org/freedesktop/secrets/collection/login/1";
  static constexpr const char* kPromptPath = "/org/freedesktop/secrets/prompt/1";
  static constexpr const char* kSessionPath = "/org/freedesktop/secrets/session/1";
  static constexpr const char* kDescription = R"xml(<node>
    <interface name="org.freedesktop.Secret.Service">
      <method name="OpenSession"><arg type="s"/><arg type="v"/>
        <arg type="v" direction="out"/><arg type="o" direction="out"/></method>
      <method name="ReadAlias"><arg type="s"/><arg type="o" direction="out"/></method>
      <method name="Unlock"><arg type="ao"/>
        <arg type="ao" direction="out"/><arg type="o" direction="out"/></method>
      <method name="GetSecrets"><arg type="ao"/><arg type="o"/>
        <arg type="a{o(oayays)}" direction="out"/></method>
      <property name="Collections" type="ao" access="read"/>
    </interface>
    <interface name="org.freedesktop.Secret.Collection">
      <method name="SearchItems"><arg type="a{ss}"/><arg type="ao" direction="out"/></method>
      <method name="CreateItem"><arg type="a{sv}"/><arg type="(oayays)"/><arg type="b"/>
        <arg type="o" direction="out"/><arg type="o" direction="out"/></method>
      <property name="Locked" type="b" access="read"/>
    </interface>
    <interface name="org.freedesktop.Secret.Item">
      <method name="Delete"><arg type="o" direction="out"/></method>
      <method name="SetSecret"><arg type="(oayays)"/></method>
      <property name="Attributes" type="a{ss}" access="read"/>
      <property name="Locked" type="b" access="read"/>
    </interface>
    <interface name="org.freedesktop.Secret.Prompt">
      <method name="Prompt"><arg type="s"/></method>
      <method name="Dismiss"/>
      <signal name="Completed"><arg type="b"/><arg type="v"/></signal>
    </interface></node>)xml";

  static void onCall(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                     const gchar* method, GVariant*, GDBusMethodInvocation* invocation,
                     gpointer self) {
    static_cast<ScriptedSecretService*>(self)->answer(method, invocation);
  }
  static GVariant* onProperty(GDBusConnection*, const gchar*, const gchar*, const gchar* interface,
                              const gchar* property, GError**, gpointer self) {
    const std::string_view name(property);
    if (name == "Collections") return g_variant_new_parsed("[%o]", kCollectionPath);
    if (name == "Attributes")
      return g_variant_new_parsed(
          "{'xdg:schema': 'org.orlfoundation.KeychainItem', 'class': 'genp', 'service': 'bank',"
          " 'synchronizable': 'absent', 'added': '1'}");
    const bool isCollection = std::string_view(interface).ends_with("Collection");
    const auto& script = static_cast<ScriptedSecretService*>(self)->script_;
    return g_variant_new_boolean(isCollection && script.isLocked ? TRUE : FALSE);
  }

  void takeName(const char* name) const {
    g_variant_unref(g_dbus_connection_call_sync(
        own_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", name, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, 5000,
        nullptr, nullptr));
  }
  /// Registers the objects and answers until the loop ends.
  void serve(std::promise<void>& isReady) {
    g_main_context_push_thread_default(context_);
    GDBusNodeInfo* const description = g_dbus_node_info_new_for_xml(kDescription, nullptr);
    const std::pair<const char*, const char*> objects[] = {
        {kSecretsPath, "org.freedesktop.Secret.Service"},
        {kCollectionPath, "org.freedesktop.Secret.Collection"},
        {kItemPath, "org.freedesktop.Secret.Item"},
        {kPromptPath, "org.freedesktop.Secret.Prompt"}};
    static const GDBusInterfaceVTable calls{&onCall, &onProperty, nullptr, {}};
    std::vector<guint> numbers;
    for (const auto& [path, interface] : objects)
      numbers.push_back(g_dbus_connection_register_object(
          own_.get(), path, g_dbus_node_info_lookup_interface(description, interface), &calls, this,
          nullptr, nullptr));
    if (script_.hasPrompter) takeName("org.gnome.keyring.SystemPrompter");
    takeName(kSecretsName);
    isReady.set_value();
    g_main_loop_run(loop_);
    for (const guint number : numbers) g_dbus_connection_unregister_object(own_.get(), number);
    g_dbus_connection_close_sync(own_.get(), nullptr, nullptr);
    g_dbus_node_info_unref(description);
    g_main_context_pop_thread_default(context_);
  }

  void answer(const std::string& method, GDBusMethodInvocation* invocation) {
    {
      const std::lock_guard guard(lock_);
      calls_.insert(method);
    }
    if (method == script_.failing)
      return g_dbus_method_invocation_return_dbus_error(invocation, script_.failure, "scripted");
    GVariant* const arguments = g_dbus_method_invocation_get_parameters(invocation);
    if (method == "OpenSession" && !isPlain(arguments))
      return g_dbus_method_invocation_return_dbus_error(
          invocation, "org.freedesktop.DBus.Error.NotSupported", "plain alone");
    g_dbus_method_invocation_return_value(invocation, resultOf(method));
    if (method == "Prompt") endPrompt();
  }
  static bool isPlain(GVariant* arguments) {
    const gchar* algorithm = nullptr;
    g_variant_get_child(arguments, 0, "&s", &algorithm);
    return std::string_view(algorithm) == "plain";
  }
  /// null for nothing.
  GVariant* resultOf(const std::string& method) {
    const bool asks = script_.asking.contains(method);
    if (asks) asked_ = method;
    const char* const prompt = asks ? kPromptPath : "/";
    if (method == "OpenSession") return g_variant_new_parsed("(<''>, %o)", kSessionPath);
    if (method == "ReadAlias") return g_variant_new("(o)", script_.defaultCollection.c_str());
    if (method == "GetSecrets")
      return g_variant_new_parsed("({%o: (%o, @ay [], @ay [0x70, 0x77], 'text/plain')},)",
                                  kItemPath, kSessionPath);
    if (method == "Unlock")
      return asks ? g_variant_new_parsed("(@ao [], %o)", prompt)
                  : g_variant_new_parsed("([%o], %o)", kCollectionPath, prompt);
    if (method == "SearchItems") return g_variant_new_parsed("([%o],)", kItemPath);
    if (method == "CreateItem") return g_variant_new("(oo)", asks ? "/" : kItemPath, prompt);
    if (method == "Delete") return g_variant_new("(o)", prompt);
    return nullptr;
  }
  void endPrompt() {
    if (script_.prompt == ScriptedPrompt::Unanswered) return;
    if (script_.prompt == ScriptedPrompt::Gone) {
      g_dbus_connection_close_sync(own_.get(), nullptr, nullptr);
      return;
    }
    // What is given with a dismissal is of no expected type either.
    GVariant* result = g_variant_new_string("");
    const bool isConfirmed =
        script_.prompt == ScriptedPrompt::Confirmed || script_.dismissesAsKeyring;
    if (isConfirmed && asked_ == "Unlock") result = g_variant_new_parsed("[%o]", kCollectionPath);
    if (isConfirmed && asked_ == "CreateItem") result = g_variant_new_object_path(kItemPath);
    const gboolean isDismissed = script_.prompt == ScriptedPrompt::Dismissed ? TRUE : FALSE;
    g_dbus_connection_emit_signal(own_.get(), nullptr, kPromptPath, "org.freedesktop.Secret.Prompt",
                                  "Completed", g_variant_new("(bv)", isDismissed, result), nullptr);
  }

  const PrivateSessionBus& bus_;
  const SecretServiceScript script_;
  const internal::libsecret::ObjectPointer<GDBusConnection> own_;
  GMainContext* const context_ = g_main_context_new();
  GMainLoop* const loop_ = g_main_loop_new(context_, FALSE);
  std::thread thread_;
  mutable std::mutex lock_;
  std::set<std::string> calls_;
  std::string asked_;
};

}  // namespace ORLFoundation
