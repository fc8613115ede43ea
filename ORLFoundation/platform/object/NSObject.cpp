
#include <ORLFoundation/platform/object/NSObject.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/internal/NSObjectState.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <mutex>
#include <typeinfo>
#include <utility>

namespace ORLFoundation {

using internal::object::NSObjectState;

namespace {

std::string addressOf(const NSObject& object) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%" PRIxPTR, reinterpret_cast<std::uintptr_t>(&object));
  return text;
}

std::string plainDescription(const NSObject& object) {
  return "<" + object.className() + ": " + addressOf(object) + ">";
}

[[noreturn]] void raiseUndefinedKey(const NSObject& object, const char* operation,
                                    std::string_view key) {
  throw NSException(NSUndefinedKeyException,
                    "[" + plainDescription(object) + " " + operation +
                        "]: this class is not key value coding-compliant for the key " +
                        std::string(key) + ".");
}

}  // namespace

NSObject::~NSObject() { delete state_.load(std::memory_order_acquire); }

std::string NSObject::className() const { return "NSObject"; }

bool NSObject::isEqual(const NSObject* other) const { return this == other; }

NSUInteger NSObject::hash() const { return std::hash<const NSObject*>{}(this); }

std::string NSObject::description() const { return plainDescription(*this); }

std::shared_ptr<NSObject> NSObject::receiverOrReference() const {
  auto& receiver = const_cast<NSObject&>(*this);
  if (auto self = receiver.weak_from_this().lock()) return self;
  return {std::shared_ptr<NSObject>(), &receiver};
}

std::shared_ptr<NSObject> NSObject::copy() {
  throw NSException(NSInvalidArgumentException,
                    "-[" + className() + " copyWithZone:]: not copyable");
}

std::shared_ptr<NSObject> NSObject::mutableCopy() {
  throw NSException(NSInvalidArgumentException,
                    "-[" + className() + " mutableCopyWithZone:]: not copyable");
}

std::shared_ptr<NSObject> NSObject::newObjectOfReceiversClass() const {
  return std::make_shared<NSObject>();
}

std::shared_ptr<NSObject> NSObject::newObjectOfExactClass() const {
  auto object = newObjectOfReceiversClass();
  const NSObject* const made = object.get();
  if (!made || typeid(*made) != typeid(*this))
    throw NSException(NSInvalidArgumentException,
                      "-[" + className() + " newObjectOfReceiversClass]: not of that class");
  return object;
}

const NSKeyTable& NSObject::keyTable() const {
  static const NSKeyTable table({
      NSKey::readOnly<&NSObject::className>("className"),
      NSKey::readOnly<&NSObject::description>("description"),
      NSKey::readOnly<&NSObject::hash>("hash"),
  });
  return table;
}

id NSObject::valueForKey(std::string_view key) const {
  if (const NSKey* found = keyTable().find(key)) return found->get(*this);
  if (key == "self") return receiverOrReference();
  return valueForUndefinedKey(key);
}

void NSObject::setValueForKey(const id& value, std::string_view key) {
  const NSKey* found = keyTable().find(key);
  if (!found || !found->set) return setValueForUndefinedKey(value, key);
  if (!hasState()) return found->set(*this, value);
  beginChange(key, true);
  try {
    found->set(*this, value);
  } catch (...) {
    abandonChange(key);
    throw;
  }
  didChangeValueForKey(key);
}

id NSObject::valueForKeyPath(std::string_view keyPath) const {
  const auto point = keyPath.find('.');
  if (point == keyPath.npos) return valueForKey(keyPath);
  return valueForKey(keyPath.substr(0, point)).valueForKeyPath(keyPath.substr(point + 1));
}

void NSObject::setValueForKeyPath(const id& value, std::string_view keyPath) {
  const auto point = keyPath.find('.');
  if (point == keyPath.npos) return setValueForKey(value, keyPath);
  const id next = valueForKey(keyPath.substr(0, point));
  if (const auto object = next.object())
    object->setValueForKeyPath(value, keyPath.substr(point + 1));
  else if (next)
    raiseUndefinedKey(*this, "setValue:forKeyPath:", keyPath);
}

id NSObject::valueForUndefinedKey(std::string_view key) const {
  raiseUndefinedKey(*this, "valueForUndefinedKey:", key);
}

void NSObject::setValueForUndefinedKey(const id& /*value*/, std::string_view key) {
  raiseUndefinedKey(*this, "setValue:forUndefinedKey:", key);
}

NSObjectState& NSObject::state() const {
  NSObjectState* present = state_.load(std::memory_order_acquire);
  if (present) return *present;
  auto fresh = std::make_unique<NSObjectState>();
  if (state_.compare_exchange_strong(present, fresh.get(), std::memory_order_acq_rel))
    return *fresh.release();
  return *present;
}

id NSObject::attachedValue(std::string_view key) const {
  NSObjectState* present = state_.load(std::memory_order_acquire);
  if (!present) return nullptr;
  const std::lock_guard guard(present->lock);
  const auto found = std::ranges::find(present->attachments, key, &NSObjectState::Attachment::key);
  return found == present->attachments.end() ? id() : found->value;
}

void NSObject::setAttachedValue(std::string_view key, id value) const {
  if (value.isNil() && !hasState()) return;
  NSObjectState& present = state();
  // What was attached before ends up in `value`, and dies after the lock is open again.
  const std::lock_guard guard(present.lock);
  auto& attachments = present.attachments;
  const auto found = std::ranges::find(attachments, key, &NSObjectState::Attachment::key);
  if (found == attachments.end()) {
    if (value) attachments.push_back({std::string(key), std::exchange(value, id())});
    return;
  }
  std::swap(found->value, value);
  if (found->value.isNil()) attachments.erase(found);
}

}  // namespace ORLFoundation
