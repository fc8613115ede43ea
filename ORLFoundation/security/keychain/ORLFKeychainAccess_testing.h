/// Scripts of keychain vectors: run over any item store, told in the words of the rows.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <map>
#include <regex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

/// An attribute's name in the rows and here.
struct KeychainWord {
  std::string_view name;
  std::string_view key;
};

inline constexpr KeychainWord kKeychainWords[] = {
    {"class", kSecClass},
    {"account", kSecAttrAccount},
    {"service", kSecAttrService},
    {"server", kSecAttrServer},
    {"accessGroup", kSecAttrAccessGroup},
    {"protocol", kSecAttrProtocol},
    {"synchronizable", kSecAttrSynchronizable},
    {"dataProtection", kSecUseDataProtectionKeychain},
    {"returnData", kSecReturnData},
    {"matchLimit", kSecMatchLimit},
    {"data", kSecValueData},
    {"accessible", kSecAttrAccessible},
};

/// Values that are words of their own, each under its attribute.
struct KeychainValue {
  std::string_view name;
  std::string_view word;
  std::string_view value;
};

inline constexpr KeychainValue kKeychainValues[] = {
    {"class", "generic", kSecClassGenericPassword},
    {"class", "internet", kSecClassInternetPassword},
    {"protocol", "http", kSecAttrProtocolHTTP},
    {"protocol", "https", kSecAttrProtocolHTTPS},
    {"synchronizable", "any", kSecAttrSynchronizableAny},
    {"matchLimit", "one", kSecMatchLimitOne},
    {"accessible", "afterFirstUnlock", kSecAttrAccessibleAfterFirstUnlock},
};

inline id keychainValueFromVector(std::string_view name, const orlftest::Json& value) {
  if (value.is_boolean()) return value.get<bool>();
  const auto text = value.get<std::string>();
  if (name == "data") return NSData(std::string_view(text));
  for (const KeychainValue& known : kKeychainValues)
    if (known.name == name && known.word == text) return known.value;
  return text;
}

/// Throws for an attribute that the rows do not have.
inline std::shared_ptr<NSMutableDictionary> keychainAttributesFromVector(
    const orlftest::Json& object) {
  auto attributes = std::make_shared<NSMutableDictionary>();
  for (const auto& [name, value] : object.items()) {
    if (name == "bytes") {
      attributes->setObject(
          NSData(std::string_view(*internal::base::bytesOfHexText(value.get<std::string>()))),
          kSecValueData);
      continue;
    }
    const auto* const word = std::ranges::find(kKeychainWords, name, &KeychainWord::name);
    if (word == std::end(kKeychainWords)) throw std::runtime_error("unknown attribute " + name);
    attributes->setObject(keychainValueFromVector(name, value), word->key);
  }
  return attributes;
}

inline void addToVector(orlftest::Json& object, std::string_view name, const id& value) {
  const std::string key(name);
  if (const auto* data = value.get<NSData>()) {
    if (internal::base::isUTF8(data->text()))
      object[key] = std::string(data->text());
    else
      object["bytes"] = internal::base::hexText(data->text());
    return;
  }
  if (value.get<NSNumber>() != nullptr) {
    object[key] = value.as<bool>().value();
    return;
  }
  object[key] = value.as<std::string>().value();
  for (const KeychainValue& known : kKeychainValues)
    if (known.name == name && value == id(known.value)) object[key] = std::string(known.word);
}

/// Throws for an attribute that the rows do not have.
inline orlftest::Json keychainAttributesToVector(const NSDictionary& attributes) {
  orlftest::Json object = orlftest::Json::object();
  for (const auto& [key, value] : attributes.entries()) {
    const auto* const word = std::ranges::find_if(
        kKeychainWords, [&key = key](const KeychainWord& known) { return key == id(known.key); });
    if (word == std::end(kKeychainWords))
      throw std::runtime_error("unknown attribute " + key.description());
    addToVector(object, word->name, value);
  }
  return object;
}

/// Hands calls on to another store, writes them down, and answers those that are to fail itself.
class RecordingItemStore final : public SecItemStore {
 public:
  /// `failures`: for each call, the statuses of its first, second, ... time; may be null.
  RecordingItemStore(SecItemStore& inner, orlftest::Json failures)
      : inner_(inner), failures_(std::move(failures)) {}

  /// The calls since the last question.
  [[nodiscard]] orlftest::Json takeCalls() {
    return std::exchange(calls_, orlftest::Json::array());
  }

  [[nodiscard]] SecItemBackend backend() const override { return inner_.backend(); }
  [[nodiscard]] OSStatus copyMatching(const NSDictionary& query, id& result) override {
    result = nullptr;
    return record("copy", query, nullptr, [&] { return inner_.copyMatching(query, result); });
  }
  [[nodiscard]] OSStatus add(const NSDictionary& attributes) override {
    return record("add", attributes, nullptr, [&] { return inner_.add(attributes); });
  }
  [[nodiscard]] OSStatus update(const NSDictionary& query,
                                const NSDictionary& attributesToUpdate) override {
    return record("update", query, &attributesToUpdate,
                  [&] { return inner_.update(query, attributesToUpdate); });
  }
  [[nodiscard]] OSStatus remove(const NSDictionary& query) override {
    return record("delete", query, nullptr, [&] { return inner_.remove(query); });
  }

 private:
  template <class Call>
  OSStatus record(const std::string& name, const NSDictionary& query,
                  const NSDictionary* attributes, const Call& call) {
    const std::string turn = std::to_string(++turns_[name]);
    const bool fails = failures_.contains(name) && failures_.at(name).contains(turn);
    const OSStatus status = fails ? failures_.at(name).at(turn).get<OSStatus>() : call();
    calls_.push_back(
        {{"call", name}, {"query", keychainAttributesToVector(query)}, {"status", status}});
    if (attributes != nullptr)
      calls_.back()["attributes"] = keychainAttributesToVector(*attributes);
    return status;
  }

  SecItemStore& inner_;
  const orlftest::Json failures_;
  std::map<std::string, int> turns_;
  orlftest::Json calls_ = orlftest::Json::array();
};

/// One script over a store that is empty.
class KeychainScript {
 public:
  enum class Slot { status, answer, none };

  KeychainScript(SecItemStore& store, const orlftest::Json& in, Slot slot)
      : store_(store),
        slot_(slot),
        recorder_(std::make_shared<RecordingItemStore>(store, in.value("fail", orlftest::Json()))),
        inUse_(&SecSetItemStore, recorder_) {
    ORLFKeychainAccess::setSharedAccessGroupName(text(in.at("group")));
    for (const orlftest::Json& item : in.at("items"))
      if (store.add(*keychainAttributesFromVector(item)) != errSecSuccess)
        throw std::runtime_error("cannot add " + item.dump());
  }
  ~KeychainScript() { ORLFKeychainAccess::setSharedAccessGroupName(std::nullopt); }
  KeychainScript(const KeychainScript&) = delete;
  KeychainScript& operator=(const KeychainScript&) = delete;

  /// "" when all steps and the items at the end are as the row tells.
  [[nodiscard]] std::string run(const orlftest::Json& in, const orlftest::Json& out) {
    for (std::size_t i = 0; i < in.at("steps").size(); ++i) {
      std::string told = runStep(in.at("steps").at(i), out.at("steps").at(i));
      if (!told.empty()) return "step " + std::to_string(i + 1) + ": " + told;
    }
    orlftest::Json items = orlftest::Json::array();
    for (const auto& item : itemsOfStore(store_))
      items.push_back(keychainAttributesToVector(*item));
    return orlftest::disagreement(out.at("items").dump(), items.dump());
  }

 private:
  using Access = ORLFKeychainAccess;
  static constexpr OSStatus kMark = 4711;

  static Access::Text text(const orlftest::Json& value) {
    if (value.is_null()) return std::nullopt;
    return value.get_ref<const std::string&>();
  }
  static std::optional<NSURL> url(const orlftest::Json& value) {
    if (value.is_null()) return std::nullopt;
    return NSURL::URLWithString(value.get<std::string>());
  }

  [[nodiscard]] Access::StatusSlot slot() {
    if (slot_ == Slot::status) return &status_;
    if (slot_ == Slot::answer) return &answer_;
    return nullptr;
  }

  orlftest::Json result(const orlftest::Json& s) {
    const auto name = s.at(0).get<std::string>();
    if (name == "setGroup") return Access::setSharedAccessGroupName(text(s.at(1))), nullptr;
    if (name == "value")
      return orlftest::jsonOrNull(
          Access::securityItemStringValueForQuery(*keychainAttributesFromVector(s.at(1)), slot()));
    if (name == "find")
      return orlftest::jsonOrNull(
          Access::findGenericPasswordForKey(text(s.at(1)), text(s.at(2)), slot()));
    if (name == "updateIn")
      return Access::updateGenericPassword(
          {text(s.at(1)), text(s.at(2)), text(s.at(3)), text(s.at(4)), s.at(5).get<bool>()},
          slot());
    if (name == "update")
      return Access::updateGenericPassword(text(s.at(1)), text(s.at(2)), text(s.at(3)),
                                           s.at(4).get<bool>(), slot());
    if (name == "deleteIn")
      return Access::deleteGenericPasswordInGroup(text(s.at(1)), text(s.at(2)), text(s.at(3)),
                                                  slot());
    if (name == "delete")
      return Access::deleteGenericPasswordForKey(text(s.at(1)), text(s.at(2)), slot());
    if (name == "findWeb")
      return orlftest::jsonOrNull(
          Access::findWebPasswordForUser(text(s.at(1)), url(s.at(2)), slot()));
    if (name == "updateWeb")
      return Access::updateWebPassword(text(s.at(1)), text(s.at(2)), url(s.at(3)),
                                       s.at(4).get<bool>(), slot());
    if (name == "deleteWeb")
      return Access::deleteWebPasswordForUser(text(s.at(1)), url(s.at(2)), slot());
    throw std::runtime_error("unknown step " + name);
  }

  std::string runStep(const orlftest::Json& step, const orlftest::Json& expected) {
    status_ = kMark;
    answer_ = {kMark, {}};
    static_cast<void>(recorder_->takeCalls());
    const LogCapture log;
    const orlftest::Json given = result(step);
    const orlftest::Json calls = recorder_->takeCalls();
    std::string told = orlftest::disagreement(expected.at("result").dump(), given.dump());
    if (told.empty()) told = orlftest::disagreement(expected.at("calls").dump(), calls.dump());
    if (told.empty()) told = statusDisagreement(expected.at("status"), !calls.empty());
    if (told.empty()) told = logDisagreement(expected.at("logs"), log.lines());
    return told;
  }

  [[nodiscard]] std::string statusDisagreement(const orlftest::Json& expected, bool isAsked) const {
    if (slot_ == Slot::none || expected == "any") return {};
    const OSStatus status = slot_ == Slot::status ? status_ : answer_.status;
    if (expected == "untouched") return orlftest::disagreement(kMark, status);
    if (slot_ == Slot::answer) {
      const std::string backend = isAsked ? store_.backend().name : "";
      if (answer_.backend.name != backend)
        return orlftest::disagreement(backend, answer_.backend.name);
    }
    return orlftest::disagreement(expected.get<OSStatus>(), status);
  }

  /// A line begins with a text, in which "any" stands for a number; without a query it ends there.
  static std::string lineDisagreement(const orlftest::Json& expected, const std::string& line) {
    std::string pattern = std::regex_replace(expected.at("text").get<std::string>(),
                                             std::regex(R"([.*+?^${}()|[\]\\])"), R"(\$&)");
    pattern = std::regex_replace(pattern, std::regex(": any"), ": -?[0-9]+");
    const bool hasQuery = pattern.ends_with("For Query: ");
    if (!std::regex_match(line, std::regex(pattern + (hasQuery ? "\\{[^]*\\}" : ""))))
      return orlftest::disagreement(expected.at("text").get<std::string>(), line);
    std::smatch account;
    const bool hasAccount = std::regex_search(line, account, std::regex("acct = ([^;]*);"));
    const orlftest::Json shown = hasAccount ? orlftest::Json(account.str(1)) : orlftest::Json();
    return orlftest::disagreement(expected.at("account").dump(), shown.dump());
  }

  static std::string logDisagreement(const orlftest::Json& expected,
                                     const std::vector<std::string>& lines) {
    if (lines.size() != expected.size())
      return orlftest::disagreement(expected.dump(), orlftest::Json(lines).dump());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      std::string told = lineDisagreement(expected.at(i), lines[i]);
      if (!told.empty()) return told;
      for (const char* account : {"anna", "berta"})
        if (lines[i].find(account) != std::string::npos) return "an account in " + lines[i];
    }
    return {};
  }

  SecItemStore& store_;
  const Slot slot_;
  const std::shared_ptr<RecordingItemStore> recorder_;
  const Replaced<std::shared_ptr<SecItemStore>> inUse_;
  OSStatus status_ = kMark;
  ORLFKeychainAnswer answer_;
};

}  // namespace ORLFoundation
