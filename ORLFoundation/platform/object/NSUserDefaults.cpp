#include <ORLFoundation/platform/object/NSUserDefaults.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <charconv>
#include <cmath>

namespace ORLFoundation {
namespace {

std::string_view withoutBlanks(std::string_view text) {
  const auto start = text.find_first_not_of(" \t\r\n");
  return start == text.npos ? std::string_view() : text.substr(start);
}

bool boolValue(std::string_view text) {
  text = withoutBlanks(text);
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) text.remove_prefix(1);
  const auto start = text.find_first_not_of('0');
  if (start == text.npos) return false;
  return std::string_view("YyTt123456789").find(text[start]) != std::string_view::npos;
}

NSInteger integerValue(std::string_view text) {
  text = withoutBlanks(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  NSInteger value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return text.starts_with('-') ? NSIntegerMin : NSIntegerMax;
}

}  // namespace

NSUserDefaults::NSUserDefaults()
    : arguments_(std::make_shared<NSMutableDictionary>()),
      persistent_(std::make_shared<NSMutableDictionary>()),
      registered_(std::make_shared<NSMutableDictionary>()) {}

const std::shared_ptr<NSUserDefaults>& NSUserDefaults::standardUserDefaults() {
  static const auto& defaults = *new auto(std::make_shared<NSUserDefaults>());
  return defaults;
}

id NSUserDefaults::objectForKey(std::string_view key) const {
  const id textKey = key;
  const std::lock_guard guard(lock_);
  for (const Domain* domain : {&arguments_, &persistent_, &registered_})
    if (id value = (*domain)->objectForKey(textKey)) return value;
  return nullptr;
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

std::optional<std::string> NSUserDefaults::stringForKey(std::string_view key) const {
  const id value = objectForKey(key);
  if (const auto* number = value.get<NSNumber>()) return number->stringValue();
  return value.as<std::string>();
}

void NSUserDefaults::setObject(const id& object, std::string_view forKey) {
  if (object.isNil()) return removeObjectForKey(forKey);
  if (!object.isPropertyList())
    throw NSException(NSInvalidArgumentException, "Attempt to insert non-property list object " +
                                                      object.description() + " for key " +
                                                      std::string(forKey));
  const std::lock_guard guard(lock_);
  persistent_->setObject(object, forKey);
}

void NSUserDefaults::setValueForKey(const id& value, std::string_view key) {
  changeValue(key, [&] { setObject(value, key); });
}

void NSUserDefaults::removeObjectForKey(std::string_view key) {
  const std::lock_guard guard(lock_);
  persistent_->removeObjectForKey(key);
}

void NSUserDefaults::registerDefaults(const NSDictionary& defaults) {
  const std::lock_guard guard(lock_);
  registered_->addEntriesFromDictionary(defaults);
}

void NSUserDefaults::setArguments(const NSDictionary& arguments) {
  const std::lock_guard guard(lock_);
  arguments_ = std::make_shared<NSMutableDictionary>(arguments.entries());
}

}  // namespace ORLFoundation
