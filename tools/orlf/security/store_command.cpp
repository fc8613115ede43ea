#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/keychain/SecItemStore.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/table.h"
#include "commands.h"
#include "files/file_argument.h"
#include "io/secret_input.h"
#include "keychain/lasting_keychain.h"
#include "security/store_entries.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Error = std::shared_ptr<const NSError>;

struct StoreArguments {
  std::string action, file;
  std::optional<std::string> service, user;
  std::optional<std::string> context, passwordFile, valueFile;
  bool keychain = false;
};

/// A store's file whose password was found to be right.
struct CheckedFile {
  NSURL url;
  Secret password;
};

Secret filePassword(const StoreArguments& arguments, bool isNew) {
  return readSecret({.option = "--password-file",
                     .file = arguments.passwordFile,
                     .prompt = "Password of " + arguments.file + ": ",
                     .isNew = isNew});
}

/// An error's text; that of a list that is none does not name the file.
std::string withFile(const std::string& file, const NSError& error) {
  const bool namesFile = error.code() != NSPropertyListReadCorruptError;
  return (namesFile ? "" : file + ": ") + error.localizedDescription();
}

/// Throws JobFailure for a file that does not open under the password.
CheckedFile checkedFile(const StoreArguments& arguments) {
  CheckedFile file{fileURLOfArgument("FILE", arguments.file), filePassword(arguments, false)};
  Error error;
  switch (ORLFEncryptedStore::checkPassword(file.password.text(), file.url, &error)) {
    case ORLFEncryptedStoreOpens:
      return file;
    case ORLFEncryptedStoreUnreadable:
      throw JobFailure(withFile(arguments.file, *error));
    case ORLFEncryptedStoreDamaged:
      throw JobFailure(arguments.file + ": the password is right, but the file is damaged");
    case ORLFEncryptedStoreNotEncrypted:
      throw JobFailure(arguments.file + ": it is not an encrypted store");
    default:
      throw JobFailure(arguments.file + ": the password is wrong, or the file is damaged");
  }
}

id contentOf(const CheckedFile& file) {
  Error error;
  id content = ORLFEncryptedStore::readEncryptedPropertyListForFileAtURL(
      file.url, file.password.text(), &error);
  if (content.isNil()) throw JobFailure(error->localizedDescription());
  return content;
}

std::string nameOfEntry(const StoreArguments& arguments) {
  const std::string context =
      arguments.context ? " in the context " + quotedForMessage(*arguments.context) : "";
  return quotedForMessage(*arguments.user) + " for " + quotedForMessage(*arguments.service) +
         context;
}

/// Throws JobFailure where there is none.
StoreEntry entryNamed(const StoreArguments& arguments, const CheckedFile& file) {
  const NSData context = contextOfText(arguments.context.value_or(""));
  for (StoreEntry& entry : entriesOfContent(contentOf(file)))
    if (entry.service == arguments.service && entry.user == arguments.user &&
        entry.context == context)
      return std::move(entry);
  throw JobFailure(arguments.file + ": there is no password of " + nameOfEntry(arguments));
}

/// The library drops the error of making a file, and then finds none.
std::string whyNotCreated(const std::string& file, const NSURL& url, const NSError& error) {
  if (error.code() != NSFileReadNoSuchFileError) return withFile(file, error);
  const auto folder = std::filesystem::path(url.path()).parent_path() / ".";
  const bool isWritable = ::access(folder.c_str(), W_OK) == 0;
  return file + ": cannot be written: " +
         (isWritable ? "it is not there afterwards" : std::strerror(errno));
}

void createStore(Session& session, const StoreArguments& arguments) {
  const NSURL url = fileURLOfArgument("FILE", arguments.file);
  std::error_code code;
  if (std::filesystem::exists(std::filesystem::symlink_status(url.path(), code)))
    throw JobFailure(arguments.file + ": it exists already");
  const Secret password = filePassword(arguments, true);
  if (password.text().empty()) throw JobFailure("an empty password protects nothing");
  bool isCreated = false;
  Error error;
  const auto store =
      ORLFEncryptedStore::openStoreWithFileAtURL(url, password.text(), &isCreated, &error);
  if (!store && error) throw JobFailure(whyNotCreated(arguments.file, url, *error));
  if (!isCreated) throw JobFailure(arguments.file + ": it exists already");
  store->close(false);
  if (session.options.json)
    printJson(session.out, {{"created", arguments.file}});
  else
    session.out << "created " << oneLine(arguments.file) << '\n';
}

const char* placeOf(const StoreEntry& entry) {
  if (entry.isInFile()) return "file";
  return entry.isInKeychain() ? "keychain" : "nowhere";
}

void listStore(Session& session, const StoreArguments& arguments) {
  const auto entries = entriesOfContent(contentOf(checkedFile(arguments)));
  Json rows = Json::array();
  Table table({{"Service"}, {"User"}, {"Context"}, {"Where"}});
  for (const StoreEntry& entry : entries) {
    if (arguments.service && entry.service != *arguments.service) continue;
    if (arguments.user && entry.user != *arguments.user) continue;
    const std::string context = textOfContext(entry.context);
    rows.push_back({{"service", entry.service},
                    {"user", entry.user},
                    {"context", context},
                    {"where", placeOf(entry)}});
    table.addRow({oneLine(entry.service), oneLine(entry.user), context, placeOf(entry)});
  }
  if (session.options.json) return printJson(session.out, rows);
  if (rows.empty()) return printNote(session, "there are no passwords");
  table.print(session.out);
}

/// While it lives, the desktop's keychain is asked, where this tool has it and no other is in use.
/// What the library logs of it is said once more, in one line, when the command fails.
class UsualKeychain {
 public:
  UsualKeychain() {
    const auto usual = SecItemStoreNamed(kUsualKeychain);
    if (usual && !SecCurrentItemStore()->backend().isLasting)
      inUse_.emplace(&SecSetItemStore, usual);
  }

 private:
  std::optional<const Replaced<std::shared_ptr<SecItemStore>>> inUse_;
  const Replaced<NSLogSink> silence_{&NSSetLogSink, [](std::string_view) {}};
};

/// Throws JobFailure where there is no keychain that keeps passwords for good.
void requireLastingKeychain() {
  const SecItemBackend backend = SecCurrentItemStore()->backend();
  if (!backend.isLasting)
    throw JobFailure("--keychain: there is no keychain that lasts: " + backend.description());
}

void getPassword(Session& session, const StoreArguments& arguments) {
  const StoreEntry entry = entryNamed(arguments, checkedFile(arguments));
  auto password = entry.parts->objectForKey("password").as<std::string>();
  if (!password && entry.isInKeychain()) {
    const UsualKeychain keychain;
    ORLFKeychainAnswer answer;
    password = ORLFKeychainAccess::findGenericPasswordForKey(entry.user, entry.service, &answer);
    if (!password)
      throw JobFailure(
          "the password of " + nameOfEntry(arguments) +
          " lies in the keychain, which does not give it: " + answer.backend.description());
  }
  if (!password) throw JobFailure("the entry of " + nameOfEntry(arguments) + " has no password");
  if (session.options.json)
    printJson(session.out, {{"password", *password}});
  else
    session.out << *password << '\n';
  explicit_bzero(password->data(), password->size());
}

void changePassword(const StoreArguments& arguments, const CheckedFile& file,
                    const std::optional<std::string>& value) {
  Error error;
  const auto store =
      ORLFEncryptedStore::openStoreWithFileAtURL(file.url, file.password.text(), nullptr, &error);
  if (!store) throw JobFailure(error->localizedDescription());
  store->setStoreInKeychain(arguments.keychain);
  const bool isDone = store->mergePassword(value, *arguments.user, *arguments.service,
                                           contextOfText(arguments.context.value_or("")), &error);
  store->close(false);
  if (isDone) return;
  if (error && error->domain() == ORLFSecurityErrorDomain)
    throw JobFailure(
        "--keychain: " + SecCopyErrorMessageString(static_cast<OSStatus>(error->code())) + " (" +
        std::to_string(error->code()) + ")");
  throw JobFailure(error ? arguments.file + ": " + error->localizedDescription()
                         : "the keychain did not take the password");
}

void setPassword(Session& session, const StoreArguments& arguments) {
  if (arguments.passwordFile == "-" && arguments.valueFile == "-")
    throw UsageFailure("--password-file and --value-file: the standard input holds one password");
  std::optional<UsualKeychain> keychain;
  if (arguments.keychain) {
    keychain.emplace();
    requireLastingKeychain();
  }
  const CheckedFile file = checkedFile(arguments);
  const Secret value = readSecret({.option = "--value-file",
                                   .file = arguments.valueFile,
                                   .prompt = "Password of " + nameOfEntry(arguments) + ": ",
                                   .isNew = true});
  std::optional<std::string> text{std::string(value.text())};
  const auto wipe = [&text](const void*) { explicit_bzero(text->data(), text->size()); };
  const std::unique_ptr<const void, decltype(wipe)> wiped(&text, wipe);
  changePassword(arguments, file, text);
  const char* const place = arguments.keychain ? "keychain" : "file";
  if (session.options.json)
    printJson(session.out, {{"set", true}, {"where", place}});
  else
    session.out << "the password of " << nameOfEntry(arguments) << " lies in the " << place << '\n';
  if (arguments.service->find('.') != std::string::npos || arguments.service->starts_with('@'))
    printNote(session, "programs do not find services with '.' in their names, or '@' before them");
}

void deletePassword(Session& session, const StoreArguments& arguments) {
  const CheckedFile file = checkedFile(arguments);
  const bool isInKeychain = entryNamed(arguments, file).isInKeychain();
  changePassword(arguments, file, std::nullopt);
  if (session.options.json)
    printJson(session.out, {{"deleted", true}});
  else
    session.out << "deleted the entry of " << nameOfEntry(arguments) << '\n';
  if (isInKeychain) printNote(session, "its password stays in the keychain");
}

/// What an action takes beside the file.
struct Action {
  const char* name;
  void (*run)(Session& session, const StoreArguments& arguments);
  bool takesEntry, needsEntry, takesValue;
};

constexpr std::array kActions{
    Action{"create", &createStore, false, false, false},
    Action{"list", &listStore, true, false, false},
    Action{"get", &getPassword, true, true, false},
    Action{"set", &setPassword, true, true, true},
    Action{"delete", &deletePassword, true, true, false},
};

void runStore(Session& session, const StoreArguments& arguments) {
  const auto* const action =
      std::find_if(kActions.begin(), kActions.end(),
                   [&](const Action& known) { return arguments.action == known.name; });
  if (action == kActions.end())
    throw UsageFailure("ACTION: expected create, list, get, set or delete, got " +
                       quotedForMessage(arguments.action));
  const std::string name = action->name;
  if (arguments.service && !action->takesEntry)
    throw UsageFailure("SERVICE does not go with " + name);
  if (action->needsEntry && (!arguments.service || !arguments.user))
    throw UsageFailure("SERVICE and USER are needed for " + name);
  if (arguments.context && !action->needsEntry)
    throw UsageFailure("--context does not go with " + name);
  if ((arguments.valueFile || arguments.keychain) && !action->takesValue)
    throw UsageFailure("--value-file and --keychain go with set, not with " + name);
  action->run(session, arguments);
}

}  // namespace

Job declareStoreCommand(Options& options) {
  options.describe(
      "Keep passwords for services in a file under a password.\n"
      "  create  makes a file without entries\n"
      "  list    prints services, users and contexts, of one SERVICE, or USER, where named\n"
      "  get     prints the password of a USER for a SERVICE\n"
      "  set     adds or changes it; what other programs set meanwhile stays\n"
      "  delete  deletes it\n"
      "Passwords come from a prompt on the terminal, from a file, or with - from the standard\n"
      "input, never from the command line. Nothing is written under a wrong password.");
  auto arguments = std::make_shared<StoreArguments>();
  options.required("ACTION", arguments->action, "create, list, get, set or delete");
  options.required("FILE", arguments->file, "The store's file");
  options.text("SERVICE", arguments->service, "What the password is for");
  options.text("USER", arguments->user, "Whose password it is");
  options.text("--password-file", arguments->passwordFile, "File with the store's password");
  options.text("--value-file", arguments->valueFile, "File with the password that set keeps");
  options.text("--context", arguments->context,
               "Tells entries of one user apart; a text, or 0x and hexadecimal digits");
  options.flag("--keychain", arguments->keychain,
               "set leaves the password in the keychain, where there is one that lasts");
  return [arguments](Session& session) { runStore(session, *arguments); };
}

}  // namespace orlftool
