/// A `SecretService` that asks the user only where that is allowed, and tells a prompt that was
/// dismissed from one that was answered: libsecret itself takes a dismissed deletion for a done
/// one. Its prompts are run here (RunningPrompt.h).
#pragma once

#include <ORLFoundation/bridges/libsecret/internal/CallDeadline.h>
#include <libsecret/secret.h>

#include <chrono>

namespace ORLFoundation::internal::libsecret {

/// What may be asked within one operation.
struct PromptPolicy {
  bool mayPrompt = false;
  std::chrono::milliseconds limit{0};
  /// Prolonged while the user is asked; null for the policy of none.
  CallDeadline* deadline = nullptr;
};

/// The class of such services, for `secret_service_open_sync`.
[[nodiscard]] GType promptingServiceType();
/// Holds until the next one; the policy lives as long. null refuses every prompt.
void setPromptPolicy(SecretService* service, const PromptPolicy* policy);

/// Codes of the errors that prompts end with.
enum PromptError : int { kPromptRefused = 1, kPromptDismissed = 2 };
[[nodiscard]] GQuark promptErrorDomain();

}  // namespace ORLFoundation::internal::libsecret
