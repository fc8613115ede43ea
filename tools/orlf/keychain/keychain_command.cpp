#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "io/secret_input.h"
#include "keychain/lasting_keychain.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct KeychainArguments {
  std::string action, service, account;
  std::optional<std::string> passwordFile, group;
  std::string backend = kUsualKeychain;
  bool isWeb = false;
};

Json jsonOf(const SecItemBackend& backend) {
  const bool isUnknown = backend.encryptionAtRest == SecItemEncryptionUnknown;
  return {{"name", backend.name},
          {"lasting", backend.isLasting},
          {"encryptionAtRest", isUnknown ? "unknown" : "nothing kept"}};
}

[[noreturn]] void fail(const ORLFKeychainAnswer& answer) {
  throw JobFailure(SecCopyErrorMessageString(answer.status) + " (" + std::to_string(answer.status) +
                   ", " + answer.backend.description() + ")");
}

void check(const ORLFKeychainAnswer& answer) {
  if (answer.status != errSecSuccess) fail(answer);
}

std::optional<NSURL> urlOf(const KeychainArguments& arguments) {
  if (!arguments.isWeb) return std::nullopt;
  auto url = NSURL::URLWithString(arguments.service);
  if (!url || url->host().value_or("").empty())
    throw UsageFailure("SERVICE: expected a web address with --web, got " +
                       quotedForMessage(arguments.service));
  return url;
}

/// A line beside the output says who answered.
void printAnswer(Session& session, const std::string& what, const ORLFKeychainAnswer& answer,
                 Json json) {
  if (session.options.json) {
    json["backend"] = jsonOf(answer.backend);
    printJson(session.out, json);
  } else {
    printNote(session, what + " " + answer.backend.description());
  }
}

void getPassword(Session& session, const KeychainArguments& arguments) {
  ORLFKeychainAnswer answer;
  const auto found = arguments.isWeb ? ORLFKeychainAccess::findWebPasswordForUser(
                                           arguments.account, urlOf(arguments), &answer)
                                     : ORLFKeychainAccess::findGenericPasswordForKey(
                                           arguments.account, arguments.service, &answer);
  if (!found) {
    check(answer);
    throw JobFailure("the item holds data that is no text");
  }
  const Secret password(ORLFoundation::internal::base::WipedBytes(found->begin(), found->end()));
  if (!session.options.json) session.out << password.text() << '\n';
  printAnswer(session, "found in", answer, {{"password", std::string(password.text())}});
}

void setPassword(Session& session, const KeychainArguments& arguments) {
  const auto url = urlOf(arguments);
  const Secret password = readSecret({.option = "--password-file",
                                      .file = arguments.passwordFile,
                                      .prompt = "Password: ",
                                      .isNew = true});
  if (password.text().empty()) throw JobFailure("expected a password, got nothing");
  ORLFKeychainAnswer answer;
  const bool isDone =
      arguments.isWeb ? ORLFKeychainAccess::updateWebPassword(password.text(), arguments.account,
                                                              url, true, &answer)
                      : ORLFKeychainAccess::updateGenericPassword(
                            password.text(), arguments.account, arguments.service, true, &answer);
  if (!isDone) fail(answer);
  printAnswer(session, "kept in", answer, {{"kept", true}});
}

/// The library takes nothing to delete for success.
bool isThere(const KeychainArguments& arguments) {
  const auto group = ORLFKeychainAccess::sharedAccessGroupName();
  const auto query = arguments.isWeb ? ORLFKeychainAccess::createInternetSearchQueryForUser(
                                           arguments.account, group, urlOf(arguments))
                                     : ORLFKeychainAccess::createGenericSearchQueryForKey(
                                           arguments.account, std::nullopt, arguments.service);
  query->setObject(kSecAttrSynchronizableAny, kSecAttrSynchronizable);
  id ignored;
  const auto store = SecCurrentItemStore();
  const OSStatus status = store->copyMatching(*query, ignored);
  if (status != errSecSuccess && status != errSecItemNotFound) fail({status, store->backend()});
  return status == errSecSuccess;
}

void deletePassword(Session& session, const KeychainArguments& arguments) {
  if (!isThere(arguments)) fail({errSecItemNotFound, SecCurrentItemStore()->backend()});
  ORLFKeychainAnswer answer;
  const bool isDone = arguments.isWeb ? ORLFKeychainAccess::deleteWebPasswordForUser(
                                            arguments.account, urlOf(arguments), &answer)
                                      : ORLFKeychainAccess::deleteGenericPasswordForKey(
                                            arguments.account, arguments.service, &answer);
  if (!isDone) fail(answer);
  check(answer);
  printAnswer(session, "deleted from", answer, {{"deleted", true}});
}

/// The group of the arguments, as long as it lives.
class SharedGroup {
 public:
  explicit SharedGroup(const std::optional<std::string>& name)
      : before_(ORLFKeychainAccess::sharedAccessGroupName()) {
    if (name) ORLFKeychainAccess::setSharedAccessGroupName(*name);
  }
  ~SharedGroup() { ORLFKeychainAccess::setSharedAccessGroupName(before_); }
  SharedGroup(const SharedGroup&) = delete;
  SharedGroup& operator=(const SharedGroup&) = delete;

 private:
  const std::optional<std::string> before_;
};

void runKeychain(Session& session, const KeychainArguments& arguments) {
  const bool isSet = arguments.action == "set";
  if (!isSet && arguments.action != "get" && arguments.action != "delete")
    throw UsageFailure("ACTION: expected get, set or delete, got " +
                       quotedForMessage(arguments.action));
  if (arguments.passwordFile && !isSet)
    throw UsageFailure("--password-file goes with set, not with " + arguments.action);
  for (const auto& [name, text] :
       {std::pair("SERVICE", &arguments.service), std::pair("ACCOUNT", &arguments.account)})
    if (text->empty()) throw UsageFailure(std::string(name) + ": expected a name, got ''");
  const LastingKeychain keychain(arguments.backend);
  const SharedGroup group(arguments.group);
  // What the library logs is said once more, in one line, when the command fails.
  const Replaced<NSLogSink> silence(&NSSetLogSink, [](std::string_view) {});
  if (isSet) return setPassword(session, arguments);
  if (arguments.action == "get") return getPassword(session, arguments);
  deletePassword(session, arguments);
}

}  // namespace

Job declareKeychainCommand(Options& options) {
  options.describe(
      "Keep a password in the desktop's keychain (Secret Service), print it, or delete it. The\n"
      "password is asked for without being shown, or read from a file; it is never an argument.\n"
      "A line beside the output names the keychain and whether it lasts; one that forgets is\n"
      "refused. Ends with 1 when there is no such item, the keychain is locked or missing.");
  auto arguments = std::make_shared<KeychainArguments>();
  options.required("ACTION", arguments->action, "get, set or delete");
  options.required("SERVICE", arguments->service,
                   "What the password is for; a web address with --web");
  options.required("ACCOUNT", arguments->account, "Whose password it is");
  options.text("--password-file", arguments->passwordFile,
               "The file that holds the password to set, - for the standard input");
  options.flag("--web", arguments->isWeb, "The password of a web site");
  options.text("--group", arguments->group, "The access group that programs share");
  options.text("--backend", arguments->backend, "The keychain's name");
  return [arguments](Session& session) { runKeychain(session, *arguments); };
}

}  // namespace orlftool
