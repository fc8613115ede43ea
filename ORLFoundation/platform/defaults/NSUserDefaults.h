/// Settings of the user: values under text keys, looked for in three domains one after the other:
/// what the process was started with, what was set, and what the program registered as its
/// defaults. Safe on any thread.
///
///     const auto defaults = NSUserDefaults::standardUserDefaults();
///     defaults->registerDefaults(*NSDictionary::dictionaryWithEntries({{"Columns", 3}}));
///     defaults->setInteger(4, "Columns");        // kept in the user's file
///     defaults->integerForKey("Columns");        // 4, or 2 after `program -Columns 2`
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/defaults/NSUserDefaultsStore.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSArray;
class NSDictionary;

class NSUserDefaults final : public NSObject {
 public:
  /// Settings that are kept in memory only.
  NSUserDefaults();
  /// Settings of a store, which is read now. What cannot be read is logged and passed over.
  explicit NSUserDefaults(std::shared_ptr<NSUserDefaultsStore> store);
  ~NSUserDefaults() override;
  /// `standardUserDefaults`  One for the process, made at first use: with the arguments of the
  /// process, kept in the file of `NSUserDefaultsFile` for the main bundle's identifier, or for the
  /// program's name where it has none. In memory where there is no such file to be had.
  [[nodiscard]] static std::shared_ptr<NSUserDefaults> standardUserDefaults();
  /// Replaces the standard defaults and gives back those before them, null when there were none
  /// yet. null has them made anew at their next use.
  static std::shared_ptr<NSUserDefaults> setStandardUserDefaults(
      std::shared_ptr<NSUserDefaults> defaults);
  /// The values under keys that words of a command line ("-key value") name. A key begins with one
  /// dash and a letter or underscore. The word after it is its value, unless that is a key too:
  /// "-verbose -level -3" sets only level. Values are text. Of a key that comes twice the last
  /// value counts.
  [[nodiscard]] static std::shared_ptr<NSDictionary> argumentsFromWords(
      std::span<const std::string> words);

  /// `objectForKey:`  nil when no domain has the key.
  [[nodiscard]] id objectForKey(std::string_view key) const;
  /// `valueForKey:`  The same.
  [[nodiscard]] id valueForKey(std::string_view key) const override;
  /// `boolForKey:`  A number other than 0, or text that begins with Y, y, T, t or, after blanks, a
  /// sign and zeros, a digit other than 0. false otherwise.
  [[nodiscard]] bool boolForKey(std::string_view key) const;
  /// `integerForKey:`, `doubleForKey:`, `floatForKey:`  Numbers, and text that begins with one; 0
  /// otherwise. Text of a number too large for a double is infinite.
  [[nodiscard]] NSInteger integerForKey(std::string_view key) const;
  [[nodiscard]] double doubleForKey(std::string_view key) const;
  [[nodiscard]] float floatForKey(std::string_view key) const;
  /// `stringForKey:`  Text, and numbers as text; nil otherwise.
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;
  /// `arrayForKey:`, `dictionaryForKey:`  null for values of another kind.
  [[nodiscard]] std::shared_ptr<NSArray> arrayForKey(std::string_view key) const;
  [[nodiscard]] std::shared_ptr<NSDictionary> dictionaryForKey(std::string_view key) const;
  /// `stringArrayForKey:`  nil unless it is an array and all of its members are text.
  [[nodiscard]] std::optional<std::vector<std::string>> stringArrayForKey(
      std::string_view key) const;
  /// `dataForKey:`
  [[nodiscard]] std::optional<NSData> dataForKey(std::string_view key) const;
  /// `URLForKey:`  Text is the path of a file, where "~" at its start is the user's home; data is
  /// an archived address. nil otherwise.
  [[nodiscard]] std::optional<NSURL> URLForKey(std::string_view key) const;
  /// `dictionaryRepresentation`  All keys of all domains with the values that are found.
  [[nodiscard]] std::shared_ptr<NSDictionary> dictionaryRepresentation() const;

  /// `setObject:forKey:`  nil removes the value that was set. Raises `NSInvalidArgumentException`
  /// for a value that fits no property list. Collections are copied, all the way down. The store
  /// has the value when this returns; a failure is logged, and the value is kept in memory and
  /// written with the next one.
  void setObject(const id& object, std::string_view forKey);
  /// `setValue:forKey:`  The same.
  void setValueForKey(const id& value, std::string_view key) override;
  /// `setBool:forKey:`, `setInteger:forKey:`, `setDouble:forKey:`, `setFloat:forKey:`
  void setBool(bool value, std::string_view forKey) { setObject(value, forKey); }
  void setInteger(NSInteger value, std::string_view forKey) { setObject(value, forKey); }
  void setDouble(double value, std::string_view forKey) { setObject(value, forKey); }
  void setFloat(float value, std::string_view forKey) { setObject(value, forKey); }
  /// `setURL:forKey:`  The path of a file's address, with "~" for the user's home, is kept as text,
  /// any other address archived. nil removes it.
  void setURL(const std::optional<NSURL>& url, std::string_view forKey);
  /// `removeObjectForKey:`  Arguments and registered defaults stay and show again.
  void removeObjectForKey(std::string_view key);
  /// `registerDefaults:`  Adds to what is registered, in place of equal keys. Never written.
  void registerDefaults(const NSDictionary& defaults);
  /// Replaces what the process was started with; these values come before all others.
  void setArguments(const NSDictionary& arguments);
  /// `synchronize`  Writes what could not be written before, and takes in what others have written.
  /// false, and a line in the log, when the store fails.
  bool synchronize();

  [[nodiscard]] std::string className() const override { return "NSUserDefaults"; }

 private:
  [[nodiscard]] id keptObject(std::string_view key) const;
  void keep(const id& object, std::string_view key);
  [[nodiscard]] bool writeUnwritten();
  [[nodiscard]] bool readAgain();

  // Of its own type, so that this header spares those that include it the one of locks.
  struct Locks;

  const std::shared_ptr<NSUserDefaultsStore> store_;
  const std::unique_ptr<Locks> locks_;
  std::shared_ptr<const NSDictionary> arguments_;
  NSUserDefaultsChanges unwritten_;
  std::shared_ptr<const NSDictionary> kept_;
  std::shared_ptr<const NSDictionary> registered_;
};

/// Has an own `NSUserDefaults`, kept in memory, stand for the standard ones while it lives; for
/// tests.
class NSStandardUserDefaultsInMemory {
 public:
  NSStandardUserDefaultsInMemory()
      : defaults_(NSUserDefaults::setStandardUserDefaults, std::make_shared<NSUserDefaults>()) {}

 private:
  Replaced<std::shared_ptr<NSUserDefaults>> defaults_;
};

}  // namespace ORLFoundation
