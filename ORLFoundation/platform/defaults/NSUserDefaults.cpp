
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/defaults/NSUserDefaultsFile.h>
#include <ORLFoundation/platform/defaults/internal/DefaultsValues.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cerrno>
#include <fstream>
#include <mutex>
#include <utility>

namespace ORLFoundation {

using namespace internal::defaults;

namespace {

std::vector<std::string> wordsOfProcess() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::vector<std::string> words;
  for (std::string word; std::getline(file, word, '\0');) words.push_back(word);
  return words;
}

std::shared_ptr<NSUserDefaults> makeStandard() {
  const std::string domain =
      NSBundle::mainBundle()->bundleIdentifier().value_or(program_invocation_short_name);
  const std::string path = NSUserDefaultsFile::pathForDomain(domain);
  auto defaults =
      path.empty() ? std::make_shared<NSUserDefaults>()
                   : std::make_shared<NSUserDefaults>(std::make_shared<NSUserDefaultsFile>(path));
  defaults->setArguments(*NSUserDefaults::argumentsFromWords(wordsOfProcess()));
  return defaults;
}

// Reading them may log, and a sink may ask for them meanwhile.
constinit internal::base::Replaceable<NSUserDefaults> standard(makeStandard);

bool isKeyWord(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && (internal::base::isLetter(word[1]) || word[1] == '_');
}

void refuseUnlessPropertyList(const id& object, std::string_view key) {
  if (object.isPropertyList()) return;
  throw NSException(NSInvalidArgumentException, "Attempt to insert non-property list object " +
                                                    object.description() + " for key " +
                                                    std::string(key));
}

void logFailure(std::string_view what, const std::shared_ptr<const NSError>& error) {
  NSLog("The user defaults cannot be " + std::string(what) + ": " +
        (error ? error->localizedDescription() : "unknown error"));
}

}  // namespace

struct NSUserDefaults::Locks {
  std::recursive_mutex store;  ///< Held while the store works; taken before the other one.
  std::mutex values;
};

NSUserDefaults::~NSUserDefaults() = default;

NSUserDefaults::NSUserDefaults() : NSUserDefaults(std::make_shared<NSUserDefaultsMemory>()) {}

NSUserDefaults::NSUserDefaults(std::shared_ptr<NSUserDefaultsStore> store)
    : store_(std::move(store)),
      locks_(std::make_unique<Locks>()),
      arguments_(std::make_shared<NSDictionary>()),
      kept_(std::make_shared<NSDictionary>()),
      registered_(std::make_shared<NSDictionary>()) {
  static_cast<void>(readAgain());
}

std::shared_ptr<NSUserDefaults> NSUserDefaults::standardUserDefaults() {
  return standard.current();
}

std::shared_ptr<NSUserDefaults> NSUserDefaults::setStandardUserDefaults(
    std::shared_ptr<NSUserDefaults> defaults) {
  return standard.exchange(std::move(defaults));
}

std::shared_ptr<NSDictionary> NSUserDefaults::argumentsFromWords(
    std::span<const std::string> words) {
  NSDictionary::Entries entries;
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    if (!isKeyWord(words[i]) || isKeyWord(words[i + 1])) continue;
    entries.emplace_back(words[i].substr(1), words[i + 1]);
    ++i;
  }
  return std::make_shared<NSDictionary>(entries);
}

/// What was set under a key, with the lock of values held.
id NSUserDefaults::keptObject(std::string_view key) const {
  const auto change = unwritten_.find(key);
  return change != unwritten_.end() ? change->second : kept_->objectForKey(key);
}

id NSUserDefaults::objectForKey(std::string_view key) const {
  const std::lock_guard guard(locks_->values);
  if (id value = arguments_->objectForKey(key)) return value;
  if (id value = keptObject(key)) return value;
  return registered_->objectForKey(key);
}

id NSUserDefaults::valueForKey(std::string_view key) const { return objectForKey(key); }

bool NSUserDefaults::boolForKey(std::string_view key) const {
  const id value = objectForKey(key);
  if (const auto* text = value.get<std::string>()) return boolValue(*text);
  return value.as<bool>().value_or(false);
}

NSInteger NSUserDefaults::integerForKey(std::string_view key) const {
  const id value = objectForKey(key);
  if (const auto* text = value.get<std::string>()) return integerValue(*text);
  return value.as<NSInteger>().value_or(0);
}

double NSUserDefaults::doubleForKey(std::string_view key) const {
  const id value = objectForKey(key);
  if (const auto* text = value.get<std::string>()) return doubleValue(*text);
  return value.as<double>().value_or(0);
}

float NSUserDefaults::floatForKey(std::string_view key) const {
  return static_cast<float>(doubleForKey(key));
}

std::optional<std::string> NSUserDefaults::stringForKey(std::string_view key) const {
  const id value = objectForKey(key);
  if (const auto* number = value.get<NSNumber>()) return number->stringValue();
  return value.as<std::string>();
}

std::shared_ptr<NSArray> NSUserDefaults::arrayForKey(std::string_view key) const {
  return objectForKey(key).as<NSArray>();
}

std::shared_ptr<NSDictionary> NSUserDefaults::dictionaryForKey(std::string_view key) const {
  return objectForKey(key).as<NSDictionary>();
}

std::optional<std::vector<std::string>> NSUserDefaults::stringArrayForKey(
    std::string_view key) const {
  const auto array = arrayForKey(key);
  if (!array) return std::nullopt;
  std::vector<std::string> texts;
  for (const id& member : *array) {
    if (!member.get<std::string>()) return std::nullopt;
    texts.push_back(*member.get<std::string>());
  }
  return texts;
}

std::optional<NSData> NSUserDefaults::dataForKey(std::string_view key) const {
  return objectForKey(key).as<NSData>();
}

std::optional<NSURL> NSUserDefaults::URLForKey(std::string_view key) const {
  return addressOfValue(objectForKey(key));
}

std::shared_ptr<NSDictionary> NSUserDefaults::dictionaryRepresentation() const {
  const std::lock_guard guard(locks_->values);
  NSMutableDictionary all(registered_->entries());
  all.addEntriesFromDictionary(*kept_);
  for (const auto& [key, value] : unwritten_) {
    const id shown = value ? value : registered_->objectForKey(key);
    all.setValueForKey(shown, key);
  }
  all.addEntriesFromDictionary(*arguments_);
  return std::make_shared<NSDictionary>(all.entries());
}

void NSUserDefaults::setObject(const id& object, std::string_view forKey) {
  if (object) refuseUnlessPropertyList(object, forKey);
  changeValue(forKey, [&] { keep(immutableCopy(object), forKey); });
}

void NSUserDefaults::setValueForKey(const id& value, std::string_view key) {
  setObject(value, key);
}

void NSUserDefaults::setURL(const std::optional<NSURL>& url, std::string_view forKey) {
  setObject(url ? valueOfAddress(*url) : id(), forKey);
}

void NSUserDefaults::removeObjectForKey(std::string_view key) { setObject(nullptr, key); }

void NSUserDefaults::registerDefaults(const NSDictionary& defaults) {
  const auto added =
      immutableCopy(std::make_shared<NSDictionary>(defaults.entries())).as<NSDictionary>();
  const std::lock_guard guard(locks_->values);
  NSMutableDictionary all(registered_->entries());
  all.addEntriesFromDictionary(*added);
  registered_ = std::make_shared<NSDictionary>(all.entries());
}

void NSUserDefaults::setArguments(const NSDictionary& arguments) {
  auto fixed =
      immutableCopy(std::make_shared<NSDictionary>(arguments.entries())).as<NSDictionary>();
  const std::lock_guard guard(locks_->values);
  arguments_ = std::move(fixed);
}

bool NSUserDefaults::synchronize() { return writeUnwritten() && readAgain(); }

void NSUserDefaults::keep(const id& object, std::string_view key) {
  {
    const std::lock_guard guard(locks_->values);
    unwritten_.insert_or_assign(std::string(key), object);
  }
  static_cast<void>(writeUnwritten());
}

bool NSUserDefaults::writeUnwritten() {
  std::shared_ptr<const NSError> error;
  {
    const std::lock_guard storeGuard(locks_->store);
    std::unique_lock guard(locks_->values);
    if (unwritten_.empty()) return true;
    const NSUserDefaultsChanges changes = unwritten_;
    guard.unlock();
    const auto values = store_->apply(changes, &error);
    guard.lock();
    if (values) {
      kept_ = values;
      // What has been set anew meanwhile waits for its own turn.
      std::erase_if(unwritten_, [&](const auto& entry) {
        const auto written = changes.find(entry.first);
        return written != changes.end() && isSameValue(written->second, entry.second);
      });
      return true;
    }
  }
  logFailure("written", error);  // Without a lock: the log's sink may ask for defaults.
  return false;
}

bool NSUserDefaults::readAgain() {
  std::shared_ptr<const NSError> error;
  {
    const std::lock_guard storeGuard(locks_->store);
    const auto values = store_->read(&error);
    const std::lock_guard guard(locks_->values);
    if (values) kept_ = values;
    if (values && !error) return true;
  }
  logFailure("read", error);
  return false;
}

}  // namespace ORLFoundation
