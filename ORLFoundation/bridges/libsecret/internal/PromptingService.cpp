#include <ORLFoundation/bridges/libsecret/internal/PromptingService.h>

#include <ORLFoundation/bridges/libsecret/internal/RunningPrompt.h>

namespace ORLFoundation::internal::libsecret {
namespace {

constexpr const char* kPolicyKey = "orlf-prompt-policy";

/// For the service's callback, which `promptFinish` is asked by.
ObjectPointer<GTask> taskFor(SecretService* service, GAsyncReadyCallback callback,
                             gpointer context) {
  return ObjectPointer<GTask>(g_task_new(service, nullptr, callback, context));
}

void refusePrompt(SecretPrompt* prompt, const ObjectPointer<GTask>& task) {
  dismissPrompt(G_DBUS_PROXY(prompt));
  g_task_return_new_error(task.get(), promptErrorDomain(), kPromptRefused,
                          "The user may not be asked.");
}

void promptAsync(SecretService* service, SecretPrompt* prompt, const GVariantType* returnType,
                 GCancellable* cancellable, GAsyncReadyCallback callback, gpointer context) {
  const auto* policy =
      static_cast<const PromptPolicy*>(g_object_get_data(G_OBJECT(service), kPolicyKey));
  if (policy == nullptr || !policy->mayPrompt)
    return refusePrompt(prompt, taskFor(service, callback, context));
  if (policy->deadline != nullptr) policy->deadline->setLimit(policy->limit);
  runPrompt(taskFor(service, callback, context), prompt, returnType, cancellable);
}

GVariant* promptFinish(SecretService*, GAsyncResult* result, GError** error) {
  return static_cast<GVariant*>(g_task_propagate_pointer(G_TASK(result), error));
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
