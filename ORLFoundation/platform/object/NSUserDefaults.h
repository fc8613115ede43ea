/// Settings of the user: values under text keys, looked for in three domains one after the other:
/// what the process was started with, what was set, and what the program registered as its
/// defaults. Kept in memory. Safe on any thread.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSUserDefaults final : public NSObject {
 public:
  NSUserDefaults();
  /// `standardUserDefaults`  One for the process, made at first use.
  [[nodiscard]] static const std::shared_ptr<NSUserDefaults>& standardUserDefaults();

  /// `objectForKey:`  nil when no domain has the key.
  [[nodiscard]] id objectForKey(std::string_view key) const;
  /// `valueForKey:`  The same.
  [[nodiscard]] id valueForKey(std::string_view key) const override;
  /// `boolForKey:`  A number other than 0, or text that begins with Y, y, T, t or, after blanks, a
  /// sign and zeros, a digit other than 0. false otherwise.
  [[nodiscard]] bool boolForKey(std::string_view key) const;
  /// `integerForKey:`  Numbers, and text that begins with one; 0 otherwise.
  [[nodiscard]] NSInteger integerForKey(std::string_view key) const;
  /// `stringForKey:`  Text, and numbers as text; nil otherwise.
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;

  /// `setObject:forKey:`  nil removes the value that was set. Raises `NSInvalidArgumentException`
  /// for a value that fits no property list.
  void setObject(const id& object, std::string_view forKey);
  /// `setValue:forKey:`  The same.
  void setValueForKey(const id& value, std::string_view key) override;
  /// `removeObjectForKey:`  Arguments and registered defaults stay and show again.
  void removeObjectForKey(std::string_view key);
  /// `registerDefaults:`  Adds to what is registered, in place of equal keys.
  void registerDefaults(const NSDictionary& defaults);
  /// Replaces what the process was started with; these values come before all others.
  void setArguments(const NSDictionary& arguments);

  [[nodiscard]] std::string className() const override { return "NSUserDefaults"; }

 private:
  using Domain = std::shared_ptr<NSMutableDictionary>;

  mutable std::mutex lock_;
  Domain arguments_;
  Domain persistent_;
  Domain registered_;
};

}  // namespace ORLFoundation
