// What a service that asks the user, refuses or has no lasting collection makes of operations.
#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>

#include <ORLFoundation/bridges/libsecret/ScriptedSecretService_testing.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using std::chrono::milliseconds;

enum class Operation { Copy, Add, Update, Remove };

OSStatus statusOf(Operation operation, SecItemStore& store) {
  id result;
  switch (operation) {
    case Operation::Copy:
      return store.copyMatching(*secPassword("bank", {{kSecReturnData, true}}), result);
    case Operation::Add:
      return store.add(*secPassword("bank", {{kSecAttrAccount, "anna"}}));
    case Operation::Update:
      return store.update(*secPassword("bank"), *secQuery({{kSecValueData, NSData("x")}}));
    case Operation::Remove:
      return store.remove(*secPassword("bank"));
  }
  return errSecParam;
}

constexpr Operation kAll[] = {Operation::Copy, Operation::Add, Operation::Update,
                              Operation::Remove};

struct StatusCase {
  const char* name;
  SecretServiceScript script;
  Operation operation;
  OSStatus expected;
  bool mayPrompt = true;
};

/// Every operation of a script ends with one status.
void addAll(std::vector<StatusCase>& cases, const StatusCase& model) {
  for (const Operation operation : kAll) {
    cases.push_back(model);
    cases.back().operation = operation;
  }
}

std::vector<StatusCase> statusCases() {
  using Prompt = ScriptedPrompt;
  const SecretServiceScript open;
  SecretServiceScript script;
  std::vector<StatusCase> cases;
  addAll(cases, {"open", open, Operation::Copy, errSecSuccess});
  script.isLocked = true;
  addAll(cases, {"unlocked without a question", script, Operation::Copy, errSecSuccess});
  script.asking = {"Unlock"};
  addAll(cases, {"locked, confirmed", script, Operation::Copy, errSecSuccess});
  addAll(cases, {"locked, nobody may be asked", script, Operation::Copy,
                 errSecInteractionNotAllowed, false});
  script.prompt = Prompt::Dismissed;
  addAll(cases, {"locked, dismissed", script, Operation::Copy, errSecUserCanceled});
  script.dismissesAsKeyring = true;
  addAll(cases, {"locked, no prompter", script, Operation::Copy, errSecInteractionNotAllowed});
  script.hasPrompter = true;
  addAll(cases, {"locked, dismissed by the prompter", script, Operation::Copy, errSecUserCanceled});
  script.dismissesAsKeyring = script.hasPrompter = false;
  script.prompt = Prompt::Odd;
  addAll(cases, {"locked, oddly confirmed", script, Operation::Copy, errSecIO});
  script.prompt = Prompt::Gone;
  addAll(cases, {"locked, the service goes", script, Operation::Copy, errSecNotAvailable});

  script = open;
  script.asking = {"Delete", "CreateItem"};
  cases.push_back({"removal confirmed", script, Operation::Remove, errSecSuccess});
  cases.push_back({"addition confirmed", script, Operation::Add, errSecSuccess});
  cases.push_back({"removal, nobody may be asked", script, Operation::Remove,
                   errSecInteractionNotAllowed, false});
  cases.push_back({"addition, nobody may be asked", script, Operation::Add,
                   errSecInteractionNotAllowed, false});
  script.prompt = Prompt::Dismissed;
  cases.push_back({"removal dismissed", script, Operation::Remove, errSecUserCanceled});
  cases.push_back({"addition dismissed", script, Operation::Add, errSecUserCanceled});

  script = open;
  for (const char* collection : {"/", "/org/freedesktop/secrets/collection/session"}) {
    script.defaultCollection = collection;
    addAll(cases, {collection, script, Operation::Copy, errSecNoDefaultKeychain});
  }

  script = open;
  for (const char* method : {"OpenSession", "ReadAlias", "Unlock", "Prompt", "SearchItems"}) {
    script.failing = method;
    script.isLocked = script.failing == "Unlock" || script.failing == "Prompt";
    if (script.isLocked) script.asking = {"Unlock"};
    addAll(cases, {method, script, Operation::Copy, errSecAuthFailed});
  }
  script = open;
  const std::pair<const char*, Operation> refused[] = {{"GetSecrets", Operation::Copy},
                                                       {"CreateItem", Operation::Add},
                                                       {"SetSecret", Operation::Update},
                                                       {"Delete", Operation::Remove}};
  const std::pair<const char*, OSStatus> failures[] = {
      {"org.freedesktop.DBus.Error.AccessDenied", errSecAuthFailed},
      {"org.freedesktop.DBus.Error.AuthFailed", errSecAuthFailed},
      {"org.freedesktop.DBus.Error.NoReply", errSecNotAvailable},
      {"org.freedesktop.Secret.Error.IsLocked", errSecInteractionNotAllowed},
      {"org.freedesktop.DBus.Error.Failed", errSecIO},
      {"com.example.Unknown", errSecIO}};
  for (const auto& [method, operation] : refused)
    for (const auto& [failure, status] : failures) {
      script.failing = method;
      script.failure = failure;
      cases.push_back({failure, script, operation, status});
    }
  return cases;
}

TEST(SecretServicePrompts, EndWithTheTabledStatusInTime) {
  const PrivateSessionBus bus;
  for (const StatusCase& row : statusCases()) {
    SCOPED_TRACE(std::string(row.name) + ", " + row.script.failing + ", operation " +
                 std::to_string(static_cast<int>(row.operation)));
    const ScriptedSecretService service(bus, row.script);
    SecretServiceItemStore store({.mayPrompt = row.mayPrompt});
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(statusOf(row.operation, store), row.expected);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
    if (row.expected == errSecUserCanceled) {
      EXPECT_TRUE(service.wasCalled("Prompt"));
    }
    if (!row.mayPrompt) {
      EXPECT_FALSE(service.wasCalled("Prompt"));
      EXPECT_TRUE(service.wasCalled("Dismiss"));
    }
  }
}

TEST(SecretServicePrompts, ThatNobodyAnswersEndWithTheLimit) {
  const PrivateSessionBus bus;
  SecretServiceScript script;
  script.isLocked = true;
  script.asking = {"Unlock"};
  script.prompt = ScriptedPrompt::Unanswered;
  const ScriptedSecretService service(bus, script);
  SecretServiceItemStore store({.mayPrompt = true, .promptLimit = milliseconds(200)});
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_EQ(statusOf(Operation::Copy, store), errSecNotAvailable);
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
  EXPECT_TRUE(service.wasCalled("Dismiss"));
}

TEST(SecretServicePrompts, ThatAreConfirmedLeadToTheSecret) {
  const PrivateSessionBus bus;
  SecretServiceScript script;
  script.isLocked = true;
  script.asking = {"Unlock"};
  const ScriptedSecretService service(bus, script);
  SecretServiceItemStore store({.mayPrompt = true});
  EXPECT_EQ(dataOfItem(store, *secPassword("bank")), "pw");
  EXPECT_TRUE(service.wasCalled("Prompt"));
}

}  // namespace
}  // namespace ORLFoundation
