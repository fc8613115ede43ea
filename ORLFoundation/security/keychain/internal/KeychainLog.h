/// Log lines about keychain queries, without user names and passwords.
#pragma once

#include <ORLFoundation/platform/crypto/SecBase.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <memory>
#include <string_view>

namespace ORLFoundation::internal::keychain {

/// A copy in which the account reads "REDACTED".
[[nodiscard]] std::shared_ptr<NSMutableDictionary> withoutAccount(const NSDictionary& query);

/// Logs "<what>: <status>".
void logStatus(std::string_view what, OSStatus status);
/// Logs "<what> returned error: <status>" and the query on the lines after it. The account, the
/// data and every text that contains the account read "REDACTED".
void logFailure(std::string_view what, OSStatus status, const NSDictionary& query);

}  // namespace ORLFoundation::internal::keychain
