#include <ORLFoundation/bridges/libsecret/internal/PromptingService.h>

namespace ORLFoundation::internal::libsecret {
namespace {

constexpr const char* kPolicyKey = "orlf-prompt-policy";

/// Its address marks tasks of our own.
char refusalTag;

SecretServiceClass* parentClass() {
  static gpointer parent = g_type_class_ref(SECRET_TYPE_SERVICE);
  return static_cast<SecretServiceClass*>(parent);
}

void refusePrompt(SecretService* service, SecretPrompt* prompt, GAsyncReadyCallback callback,
                  gpointer context) {
  g_dbus_proxy_call(G_DBUS_PROXY(prompt), "Dismiss", nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1,
                    nullptr, nullptr, nullptr);
  const ObjectPointer<GTask> task(g_task_new(service, nullptr, callback, context));
  g_task_set_source_tag(task.get(), &refusalTag);
  g_task_return_new_error(task.get(), promptErrorDomain(), kPromptRefused,
                          "The user may not be asked.");
}

void promptAsync(SecretService* service, SecretPrompt* prompt, const GVariantType* returnType,
                 GCancellable* cancellable, GAsyncReadyCallback callback, gpointer context) {
  const auto* policy =
      static_cast<const PromptPolicy*>(g_object_get_data(G_OBJECT(service), kPolicyKey));
  if (policy == nullptr || !policy->mayPrompt)
    return refusePrompt(service, prompt, callback, context);
  if (policy->deadline != nullptr) policy->deadline->setLimit(policy->limit);
  parentClass()->prompt_async(service, prompt, returnType, cancellable, callback, context);
}

GVariant* promptFinish(SecretService* service, GAsyncResult* result, GError** error) {
  if (G_IS_TASK(result) && g_task_get_source_tag(G_TASK(result)) == &refusalTag)
    return static_cast<GVariant*>(g_task_propagate_pointer(G_TASK(result), error));
  GError* failure = nullptr;
  GVariant* answer = parentClass()->prompt_finish(service, result, &failure);
  if (answer == nullptr && failure == nullptr)
    failure = g_error_new_literal(promptErrorDomain(), kPromptDismissed, "The user declined.");
  if (failure != nullptr) g_propagate_error(error, failure);
  return answer;
}

void initializeClass(gpointer ownClass, gpointer) {
  auto* const service = static_cast<SecretServiceClass*>(ownClass);
  service->prompt_async = &promptAsync;
  service->prompt_finish = &promptFinish;
}

}  // namespace

GType promptingServiceType() {
  static const GType type = g_type_register_static_simple(
      SECRET_TYPE_SERVICE, "ORLFPromptingService", sizeof(SecretServiceClass), &initializeClass,
      sizeof(SecretService), nullptr, GTypeFlags{});
  return type;
}

void setPromptPolicy(SecretService* service, const PromptPolicy* policy) {
  g_object_set_data(G_OBJECT(service), kPolicyKey, const_cast<PromptPolicy*>(policy));
}

GQuark promptErrorDomain() {
  static const GQuark domain = g_quark_from_static_string("orlf-prompt-error");
  return domain;
}

}  // namespace ORLFoundation::internal::libsecret
