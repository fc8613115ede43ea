#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cstddef>
#include <utility>

namespace ORLFoundation {

namespace {

template <class Map>
Map* createdIf(bool create, std::unique_ptr<Map>& map) {
  if (create && !map) map = std::make_unique<Map>();
  return map.get();
}

template <class Map>
void removeEntry(Map* map, std::string_view key) {
  if (!map) return;
  const auto entry = map->find(key);
  if (entry != map->end()) map->erase(entry);
}

/// Null where the map, the key or its entry is absent.
template <class Map>
const typename Map::mapped_type* entryOf(const Map* map, std::optional<std::string_view> key) {
  if (!map || !key) return nullptr;
  const auto entry = map->find(*key);
  return entry == map->end() ? nullptr : &entry->second;
}

template <class Map>
std::unique_ptr<Map> copyOfMap(const std::unique_ptr<Map>& map) {
  return map ? std::make_unique<Map>(*map) : nullptr;
}

}  // namespace

ORLFProcessStep::ORLFProcessStep(std::string identifier) : identifier_(std::move(identifier)) {}

// A step would destroy its children, they theirs, and a deep tree the stack. So the steps that
// nobody else holds hand their children up before they go; the entries move without an allocation.
ORLFProcessStep::~ORLFProcessStep() {
  if (!childStepMap_) return;
  std::multimap<std::string, std::shared_ptr<ORLFProcessStep>, std::less<>> doomed;
  doomed.merge(*childStepMap_);
  while (!doomed.empty()) {
    const auto entry = doomed.extract(doomed.begin());
    const std::shared_ptr<ORLFProcessStep>& step = entry.mapped();
    if (step.use_count() == 1 && step->childStepMap_) doomed.merge(*step->childStepMap_);
  }
}

std::string ORLFProcessStep::fullIdentifier() const {
  std::shared_ptr<const ORLFProcessStep> parent = parentStep();
  if (!parent) return identifier_;
  std::vector<std::string_view> upwards = {identifier_};
  std::size_t length = identifier_.size();
  // A parent is held by its own parent or by the caller, so its text outlives the walk.
  for (; parent; parent = parent->parentStep()) {
    upwards.emplace_back(parent->identifier_);
    length += 1 + parent->identifier_.size();
  }
  std::string text;
  text.reserve(length);
  for (auto name = upwards.rbegin(); name != upwards.rend(); ++name) {
    if (name != upwards.rbegin()) text += '.';
    text += *name;
  }
  return text;
}

void ORLFProcessStep::setRepresentedObject(id value) {
  changeValue("representedObject", [&] { representedObject_ = std::move(value); });
}

void ORLFProcessStep::setIntialStepIdentifier(std::optional<std::string> value) {
  changeValue("intialStepIdentifier", [&] { intialStepIdentifier_ = std::move(value); });
}

std::shared_ptr<ORLFProcessStep> ORLFProcessStep::initialStep() {
  auto step = std::static_pointer_cast<ORLFProcessStep>(shared_from_this());
  while (step && step->intialStepIdentifier_)
    step = step->childStepWithIdentifier(*step->intialStepIdentifier_);
  return step;
}

ORLFProcessStep::TransitionMap* ORLFProcessStep::transitionMapCreate(bool create) {
  return createdIf(create, transitionMap_);
}

ORLFProcessStep::ResponseMap* ORLFProcessStep::responseMapCreate(bool create) {
  return createdIf(create, responseMap_);
}

const ORLFProcessStep::ChildStepMap* ORLFProcessStep::childStepMap(bool create) {
  return createdIf(create, childStepMap_);
}

void ORLFProcessStep::setSiblingIdentifier(const id& siblingIdentifier, std::string forTransition) {
  if (!siblingIdentifier.isNull() && !siblingIdentifier.get<std::string>())
    throw NSException(NSInvalidArgumentException,
                      "-[ORLFProcessStep setSiblingIdentifier:forTransition:]: transition \"" +
                          forTransition + "\" leads to neither a sibling nor out of the parent");
  transitionMapCreate(true)->insert_or_assign(std::move(forTransition), siblingIdentifier);
}

void ORLFProcessStep::removeSiblingTransition(std::string_view transition) {
  removeEntry(transitionMap_.get(), transition);
}

id ORLFProcessStep::siblingIdentiferForTransition(
    std::optional<std::string_view> transition) const {
  const id* entry = entryOf(transitionMap_.get(), transition);
  return entry ? *entry : id();
}

std::optional<std::vector<std::string>> ORLFProcessStep::possibleTransitions() const {
  if (!transitionMap_) return std::nullopt;
  std::vector<std::string> names;
  names.reserve(transitionMap_->size());
  for (const auto& entry : *transitionMap_) names.push_back(entry.first);
  return names;
}

void ORLFProcessStep::setResponse(std::string response, std::string forTransition) {
  responseMapCreate(true)->insert_or_assign(std::move(forTransition), std::move(response));
}

void ORLFProcessStep::removeResponseTransition(std::string_view transition) {
  removeEntry(responseMap_.get(), transition);
}

std::optional<std::string> ORLFProcessStep::responseForTransition(
    std::optional<std::string_view> transition) const {
  const std::string* entry = entryOf(responseMap_.get(), transition);
  return entry ? std::optional<std::string>(*entry) : std::nullopt;
}

std::optional<std::string> ORLFProcessStep::responseWithTransition(
    std::optional<std::string_view> transition) {
  return transition ? std::optional<std::string>(*transition) : std::nullopt;
}

bool ORLFProcessStep::isOrStandsBelow(const ORLFProcessStep& other) const {
  if (this == &other) return true;
  for (auto above = parentStep(); above; above = above->parentStep())
    if (above.get() == &other) return true;
  return false;
}

void ORLFProcessStep::addChildStep(std::shared_ptr<ORLFProcessStep> child) {
  // Only a step that has, or had, children can stand above this one: leaves are spared the climb.
  if (!child || child.get() == this || (child->childStepMap_ && isOrStandsBelow(*child)))
    throw NSException(NSInvalidArgumentException,
                      "-[ORLFProcessStep addChildStep:]: no child of \"" + identifier_ +
                          "\" can be " + (child ? "a step above it" : "nil"));
  if (const auto parent = child->parentStep(); parent && parent.get() != this)
    parent->removeChildStepWithIdentifier(child->identifier_);
  child->parentStep_ = std::static_pointer_cast<ORLFProcessStep>(shared_from_this());
  createdIf(true, childStepMap_)->insert_or_assign(child->identifier_, child);
}

void ORLFProcessStep::removeChildStepWithIdentifier(std::string_view identifier) {
  removeEntry(childStepMap_.get(), identifier);
}

std::shared_ptr<ORLFProcessStep> ORLFProcessStep::childStepWithIdentifier(
    std::string_view identifier) const {
  const auto* const entry = entryOf(childStepMap_.get(), identifier);
  return entry ? *entry : nullptr;
}

std::shared_ptr<ORLFProcessStep> ORLFProcessStep::childStepWithIdentifierPath(
    std::string_view identifierPath) const {
  const ORLFProcessStep* step = this;
  while (true) {
    const std::size_t point = identifierPath.find('.');
    const std::string_view head = identifierPath.substr(0, point);
    const auto* const child =
        head.empty() ? nullptr : entryOf(step->childStepMap_.get(), std::optional(head));
    if (!child) return nullptr;
    if (point == std::string_view::npos || point + 1 == identifierPath.size()) return *child;
    identifierPath.remove_prefix(point + 1);
    step = child->get();
  }
}

std::shared_ptr<NSObject> ORLFProcessStep::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFProcessStep>(identifier_);
}

/// Whatever the hook of a derived class has put into the new step, these fields are its own.
std::shared_ptr<ORLFProcessStep> ORLFProcessStep::copyWithoutChildren() const {
  auto step = newObjectAs<ORLFProcessStep>();
  step->parentStep_.reset();
  step->representedObject_ = nullptr;
  step->identifier_ = identifier_;
  step->intialStepIdentifier_ = intialStepIdentifier_;
  step->childStepMap_.reset();
  step->transitionMap_ = copyOfMap(transitionMap_);
  step->responseMap_ = copyOfMap(responseMap_);
  return step;
}

std::shared_ptr<NSObject> ORLFProcessStep::copy() {
  auto top = copyWithoutChildren();
  std::vector<std::pair<const ORLFProcessStep*, ORLFProcessStep*>> open = {{this, top.get()}};
  while (!open.empty()) {
    const auto [original, twin] = open.back();
    open.pop_back();
    if (!original->childStepMap_) continue;
    for (const auto& [name, child] : *original->childStepMap_) {
      const auto childTwin = child->copyWithoutChildren();
      twin->addChildStep(childTwin);
      open.emplace_back(child.get(), childTwin.get());
    }
  }
  return top;
}

const NSKeyTable& ORLFProcessStep::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readOnly<&ORLFProcessStep::identifier>("identifier"),
       NSKey::readOnly<&ORLFProcessStep::fullIdentifier>("fullIdentifier"),
       NSKey::readOnly<&ORLFProcessStep::parentStep>("parentStep"),
       NSKey::readWrite<&ORLFProcessStep::representedObject,
                        &ORLFProcessStep::setRepresentedObject>("representedObject"),
       NSKey::readWrite<&ORLFProcessStep::intialStepIdentifier,
                        &ORLFProcessStep::setIntialStepIdentifier>("intialStepIdentifier")});
  return table;
}

}  // namespace ORLFoundation
