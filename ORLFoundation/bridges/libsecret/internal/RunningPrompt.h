/// A prompt of the service, from showing it to its end: that the user answers, that the operation's
/// time is over, that the service goes. libsecret's own waits for ever where the service completes
/// a prompt with a value of another type than expected, or never completes one that was given up.
#pragma once

#include <ORLFoundation/bridges/libsecret/internal/GLibPointers.h>
#include <libsecret/secret.h>

namespace ORLFoundation::internal::libsecret {

/// Ends the task, in the context that is the thread's default now, with the value that the prompt
/// gives, of that type where it is not null, or with an error: `kPromptDismissed` where the user
/// declined, `kPromptRefused` where nobody could be asked.
void runPrompt(ObjectPointer<GTask> task, SecretPrompt* prompt, const GVariantType* returnType,
               GCancellable* cancellable);

/// Tells the service that the user is not to be asked, or no longer. Waits half a second at most: a
/// message that nobody waits for is lost when the connection goes.
void dismissPrompt(GDBusProxy* prompt);

}  // namespace ORLFoundation::internal::libsecret
