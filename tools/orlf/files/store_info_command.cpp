#include <ORLFoundation/files/repair/ORLFPersistentStoreRepair.h>
#include <ORLFoundation/platform/object/NSArray.h>

#include <array>
#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "files/file_argument.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct StoreInfo {
  std::shared_ptr<NSDictionary> metadata;
  bool isRepaired = false;
  ORLFPersistentStoreJournalMode mode = ORLFPersistentStoreJournalModeUnknown;
};

const char* wordOf(ORLFPersistentStoreJournalMode mode) {
  switch (mode) {
    case ORLFPersistentStoreJournalModeWAL:
      return kORLFPersistentStoreJournalModeWALChars;
    case ORLFPersistentStoreJournalModeDelete:
      return kORLFPersistentStoreJournalModeDeleteChars;
    default:
      return "unknown";
  }
}

/// Whether a program that writes the store keeps it from being read: a repair would only come in
/// its way.
bool isOfLock(const NSError& error) {
  constexpr NSInteger kKind = 0xff, kBusy = 5, kLocked = 6;
  if (!error.userInfo()) return false;
  const auto cause = error.userInfo()->objectForKey(NSUnderlyingErrorKey).as<NSError>();
  if (!cause || cause->domain() != NSSQLiteErrorDomain) return false;
  const NSInteger kind = cause->code() & kKind;
  return kind == kBusy || kind == kLocked;
}

/// Throws JobFailure for what is no store, and for one that somebody writes.
StoreInfo readStore(const NSURL& url) {
  StoreInfo info;
  std::shared_ptr<const NSError> error;
  info.metadata = NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(
      NSSQLiteStoreType, url, nullptr, &error);
  if (!info.metadata && isOfLock(*error)) throw JobFailure(error->localizedDescription());
  info.isRepaired = !info.metadata;
  if (!info.metadata)
    info.metadata = orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url, &error);
  if (!info.metadata) throw JobFailure(error->localizedDescription());
  info.mode = orlfJournalModeForSQLPersistentStoreAtURL(url);
  return info;
}

Json jsonOf(const id& value);

Json jsonOf(const NSDictionary& dictionary) {
  Json object = Json::object();
  for (const auto& [key, value] : dictionary.entries()) object[key.description()] = jsonOf(value);
  return object;
}

Json jsonOf(const NSNumber& number) {
  switch (number.kind()) {
    case NSNumber::Kind::Boolean:
      return number.boolValue();
    case NSNumber::Kind::Integer:
      return number.integerValue();
    case NSNumber::Kind::UnsignedInteger:
      return number.unsignedIntegerValue();
    default:
      return number.doubleValue();
  }
}

/// Dates and data by their descriptions.
Json jsonOf(const id& value) {
  if (const auto dictionary = value.as<NSDictionary>()) return jsonOf(*dictionary);
  if (const auto array = value.as<NSArray>()) {
    Json list = Json::array();
    for (const id& member : *array) list.push_back(jsonOf(member));
    return list;
  }
  if (const auto* number = value.get<NSNumber>()) return jsonOf(*number);
  return value.description();
}

void printInfo(Session& session, const StoreInfo& info) {
  session.out << "Journal mode: " << wordOf(info.mode) << '\n'
              << "Repaired: " << (info.isRepaired ? "yes" : "no") << '\n';
  for (const auto& [key, value] : info.metadata->entries())
    session.out << oneLine(key.description()) << ": " << oneLine(value.description()) << '\n';
}

void runStoreInfo(Session& session, const std::string& file) {
  const StoreInfo info = readStore(fileURLOfArgument("FILE", file));
  if (session.options.json) {
    printJson(session.out, {{"journalMode", wordOf(info.mode)},
                            {"repaired", info.isRepaired},
                            {"metadata", jsonOf(*info.metadata)}});
  } else {
    printInfo(session, info);
  }
}

}  // namespace

Job declareStoreInfoCommand(Options& options) {
  options.describe(
      "Print the metadata of an object store in SQLite, the mode of its journal, and whether it "
      "had\n"
      "to be repaired: a store that a crash has left half-written is brought to its last state\n"
      "first. No program may have it open for writing.");
  auto file = std::make_shared<std::string>();
  options.required("FILE", *file, "A store file");
  return [file](Session& session) { runStoreInfo(session, *file); };
}

}  // namespace orlftool
