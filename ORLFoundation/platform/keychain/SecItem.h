/// The attributes of keychain items: keys of queries and of what is added, and their values.
///
///     const auto query = NSDictionary::dictionaryWithEntries(
///         {{kSecClass, kSecClassGenericPassword}, {kSecAttrService, "bank"},
///          {kSecReturnData, true}});
///     id password;
///     const OSStatus status = SecCurrentItemStore()->copyMatching(*query, password);
#pragma once

#include <string_view>

namespace ORLFoundation {

// What an item is.
inline constexpr std::string_view kSecClass = "class";
inline constexpr std::string_view kSecClassGenericPassword = "genp";
inline constexpr std::string_view kSecClassInternetPassword = "inet";

// By what it is found: texts.
inline constexpr std::string_view kSecAttrAccount = "acct";
inline constexpr std::string_view kSecAttrService = "svce";
inline constexpr std::string_view kSecAttrServer = "srvr";
inline constexpr std::string_view kSecAttrProtocol = "ptcl";
inline constexpr std::string_view kSecAttrProtocolHTTP = "http";
inline constexpr std::string_view kSecAttrProtocolHTTPS = "htps";
inline constexpr std::string_view kSecAttrAccessGroup = "agrp";

// Whether it goes along to the user's other machines: a boolean. Kept as an attribute; no store
// here carries items anywhere. Queries may ask for either kind.
inline constexpr std::string_view kSecAttrSynchronizable = "sync";
inline constexpr std::string_view kSecAttrSynchronizableAny = "syna";

// What it holds, as data, and when that may be read. Kept as an attribute too.
inline constexpr std::string_view kSecValueData = "v_Data";
inline constexpr std::string_view kSecAttrAccessible = "pdmn";
inline constexpr std::string_view kSecAttrAccessibleAfterFirstUnlock = "ck";

// What a query is answered with: booleans, and how many items.
inline constexpr std::string_view kSecReturnData = "r_Data";
inline constexpr std::string_view kSecReturnAttributes = "r_Attributes";
inline constexpr std::string_view kSecMatchLimit = "m_Limit";
inline constexpr std::string_view kSecMatchLimitOne = "m_LimitOne";
inline constexpr std::string_view kSecMatchLimitAll = "m_LimitAll";

// Which of the platform's keychains is meant: a boolean that no store here looks at.
inline constexpr std::string_view kSecUseDataProtectionKeychain = "nleg";

}  // namespace ORLFoundation
