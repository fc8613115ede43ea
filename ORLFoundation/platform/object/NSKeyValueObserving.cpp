
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/internal/NSObjectState.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

/// Key paths that depend on each other in a circle are followed no deeper than this.
constexpr int kDeepestDependency = 32;

using internal::object::NSObjectState;
using Change = NSObjectState::Change;

std::uint64_t nextSequence() {
  static std::atomic<std::uint64_t> next{0};
  return next.fetch_add(1, std::memory_order_relaxed);
}

/// The latest open change of the key on this thread.
auto findChange(std::vector<Change>& changes, std::string_view key) {
  const auto thread = std::this_thread::get_id();
  return std::find_if(changes.rbegin(), changes.rend(), [&](const Change& change) {
    return change.thread == thread && change.key == key;
  });
}

/// Each observation of the key once, with room for its old value.
auto observationsOf(const NSObjectState& state, std::string_view key) {
  decltype(Change::observations) told;
  for (const auto& hook : state.hooks) {
    const auto isTheSame = [&](const auto& one) { return one.first.get() == hook.address; };
    if (hook.key != key || std::ranges::any_of(told, isTheSame)) continue;
    if (auto observation = hook.observation.lock()) told.emplace_back(std::move(observation), id());
  }
  return told;
}

Change takeChange(NSObjectState& state, std::string_view key) {
  const std::lock_guard guard(state.lock);
  const auto found = findChange(state.changes, key);
  if (found == state.changes.rend()) return {};
  Change change = std::move(*found);
  state.changes.erase(std::next(found).base());
  return change;
}

}  // namespace

NSKeyValueObservation::NSKeyValueObservation(NSObject& root, std::string_view keyPath,
                                             NSUInteger options, NSKeyValueBlock block)
    : root_(root.weak_from_this()),
      keyPath_(keyPath),
      options_(options),
      block_(std::move(block)),
      sequence_(nextSequence()) {}

NSKeyValueObservation::~NSKeyValueObservation() { replaceHooks({}); }

std::shared_ptr<NSKeyValueObservation> NSKeyValueObservation::start(NSObject& root,
                                                                    std::string_view keyPath,
                                                                    NSUInteger options,
                                                                    NSKeyValueBlock block) {
  if (root.weak_from_this().expired())
    throw NSException(NSInvalidArgumentException,
                      "only an object held by a shared pointer can be observed");
  std::shared_ptr<NSKeyValueObservation> observation(
      new NSKeyValueObservation(root, keyPath, options, std::move(block)));
  Hooks hooks;
  observation->collectHooks(root, keyPath, hooks, 0);
  observation->replaceHooks(std::move(hooks));
  if (options & NSKeyValueObservingOptionInitial) {
    NSKeyValueChange change;
    change.keyPath = observation->keyPath_;
    change.object = &root;
    if (options & NSKeyValueObservingOptionNew) change.newValue = observation->currentValue();
    observation->call(change);
  }
  return observation;
}

void NSKeyValueObservation::invalidate() {
  isValid_.store(false, std::memory_order_release);
  replaceHooks({});
}

id NSKeyValueObservation::currentValue() const {
  const auto root = root_.lock();
  return root ? root->valueForKeyPath(keyPath_) : id();
}

void NSKeyValueObservation::call(const NSKeyValueChange& change) const {
  if (isValid_.load(std::memory_order_acquire)) block_(change);
}

id NSKeyValueObservation::begin() const {
  const auto root = root_.lock();
  if (!root || !isValid_.load(std::memory_order_acquire)) return nullptr;
  id oldValue;
  if (options_ & NSKeyValueObservingOptionOld) oldValue = currentValue();
  if (options_ & NSKeyValueObservingOptionPrior) {
    NSKeyValueChange change;
    change.keyPath = keyPath_;
    change.object = root.get();
    change.oldValue = oldValue;
    change.isPrior = true;
    call(change);
  }
  return oldValue;
}

void NSKeyValueObservation::end(id oldValue) {
  const auto root = root_.lock();
  if (!root || !isValid_.load(std::memory_order_acquire)) return;
  if (!isFixed_) {
    Hooks hooks;
    collectHooks(*root, keyPath_, hooks, 0);
    replaceHooks(std::move(hooks));
  }
  NSKeyValueChange change;
  change.keyPath = keyPath_;
  change.object = root.get();
  change.oldValue = std::move(oldValue);
  if (options_ & NSKeyValueObservingOptionNew) change.newValue = currentValue();
  call(change);
}

void NSKeyValueObservation::collectHooks(NSObject& object, std::string_view keyPath, Hooks& into,
                                         int depth) {
  if (depth > kDeepestDependency) return;
  const auto point = keyPath.find('.');
  const std::string_view key = keyPath.substr(0, point);
  into.push_back({object.weak_from_this(), std::string(key)});
  for (const std::string& affecting : object.keyPathsForValuesAffectingValueForKey(key))
    collectHooks(object, affecting, into, depth + 1);
  if (point == keyPath.npos) return;
  if (isFixed_) isFixed_ = false;
  if (const auto next = object.valueForKey(key).object())
    collectHooks(*next, keyPath.substr(point + 1), into, depth + 1);
}

// The getters of the way have run before: nothing of a class's own runs under the lock.
void NSKeyValueObservation::replaceHooks(Hooks hooks) {
  std::vector<std::shared_ptr<NSObject>> alive;  // let go after the lock
  const std::lock_guard guard(lock_);
  const auto stateOf = [&](const Hook& hook) -> NSObjectState* {
    alive.push_back(hook.object.lock());
    return alive.back() ? &alive.back()->state() : nullptr;
  };
  for (const Hook& hook : hooks_) {
    NSObjectState* state = stateOf(hook);
    if (!state) continue;
    const std::lock_guard stateGuard(state->lock);
    std::erase_if(state->hooks, [this](const auto& held) { return held.address == this; });
  }
  if (!isValid_.load(std::memory_order_acquire)) hooks.clear();
  hooks_ = std::move(hooks);
  for (const Hook& hook : hooks_) {
    NSObjectState* state = stateOf(hook);
    if (!state) continue;
    const std::lock_guard stateGuard(state->lock);
    state->hooks.push_back({hook.key, weak_from_this(), this});
  }
}

std::shared_ptr<NSKeyValueObservation> NSObject::addObserver(std::string_view keyPath,
                                                             NSUInteger options,
                                                             NSKeyValueBlock block) {
  return NSKeyValueObservation::start(*this, keyPath, options, std::move(block));
}

void NSObject::addObserver(const std::shared_ptr<NSObject>& observer, std::string_view forKeyPath,
                           NSUInteger options, const void* context) {
  if (!observer) return;
  auto forward = [weak = std::weak_ptr(observer), context](const NSKeyValueChange& change) {
    if (const auto target = weak.lock())
      target->observeValueForKeyPath(change.keyPath, *change.object, change, context);
  };
  auto observation = NSKeyValueObservation::start(*this, forKeyPath, options, std::move(forward));
  std::vector<NSObjectState::Registration> dead;  // let go after the lock
  NSObjectState& own = state();
  const std::lock_guard guard(own.lock);
  const auto firstDead = std::stable_partition(
      own.registrations.begin(), own.registrations.end(),
      [](const auto& registration) { return !registration.weakObserver.expired(); });
  dead.assign(std::make_move_iterator(firstDead), std::make_move_iterator(own.registrations.end()));
  own.registrations.erase(firstDead, own.registrations.end());
  own.registrations.push_back(
      {observer.get(), observer, std::string(forKeyPath), context, std::move(observation)});
}

void NSObject::removeObserver(const NSObject& observer, std::string_view forKeyPath,
                              const void* context) {
  std::shared_ptr<NSKeyValueObservation> removed;
  if (hasState()) {
    NSObjectState& own = state();
    const std::lock_guard guard(own.lock);
    const auto found = std::find_if(
        own.registrations.rbegin(), own.registrations.rend(), [&](const auto& registration) {
          return registration.observer == &observer && registration.keyPath == forKeyPath &&
                 registration.context == context;
        });
    if (found != own.registrations.rend()) {
      removed = std::move(found->observation);
      own.registrations.erase(std::next(found).base());
    }
  }
  if (!removed) {
    throw NSException(NSRangeException, "Cannot remove an observer for the key path \"" +
                                            std::string(forKeyPath) +
                                            "\" because it is not registered as an observer.");
  }
  removed->invalidate();
}

void NSObject::observeValueForKeyPath(std::string_view /*keyPath*/, NSObject& /*ofObject*/,
                                      const NSKeyValueChange& /*change*/, const void* /*context*/) {
}

std::vector<std::string> NSObject::keyPathsForValuesAffectingValueForKey(
    std::string_view key) const {
  const NSKey* found = keyTable().find(key);
  if (!found) return {};
  return {found->affectingKeyPaths.begin(), found->affectingKeyPaths.end()};
}

void NSObject::willChangeValueForKey(std::string_view key) {
  if (hasState()) beginChange(key, false);
}

void NSObject::beginChange(std::string_view key, bool automatic) {
  NSObjectState& own = state();
  Change change;
  change.key = key;
  change.thread = std::this_thread::get_id();
  change.isAutomatic = automatic;
  {
    const std::lock_guard guard(own.lock);
    if (own.hooks.empty() && own.changes.empty()) return;
    const auto outer = findChange(own.changes, key);
    const bool isPartOfOuter = !automatic && outer != own.changes.rend() && outer->isAutomatic &&
                               !std::exchange(outer->isAbsorbed, true);
    if (!isPartOfOuter) change.observations = observationsOf(own, key);
  }
  std::ranges::sort(change.observations, {},
                    [](const auto& told) { return told.first->sequence_; });
  for (auto& [observation, oldValue] : change.observations) oldValue = observation->begin();
  const std::lock_guard guard(own.lock);
  own.changes.push_back(std::move(change));
}

void NSObject::didChangeValueForKey(std::string_view key) {
  if (!hasState()) return;
  Change change = takeChange(state(), key);
  for (auto& [observation, oldValue] : change.observations) observation->end(std::move(oldValue));
}

void NSObject::abandonChange(std::string_view key) noexcept {
  const Change abandoned = takeChange(state(), key);
}

}  // namespace ORLFoundation
