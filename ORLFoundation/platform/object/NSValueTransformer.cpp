
#include <ORLFoundation/platform/object/NSValueTransformer.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <map>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

struct Registry {
  std::mutex lock;
  std::map<std::string, std::shared_ptr<NSValueTransformer>, std::less<>> transformers;
};

Registry& registry() {
  static Registry& shared = *new Registry;
  return shared;
}

}  // namespace

void NSValueTransformer::setValueTransformer(std::shared_ptr<NSValueTransformer> transformer,
                                             std::string_view forName) {
  Registry& shared = registry();
  // The one that is replaced ends up in `transformer`, and dies after the lock is open again.
  const std::lock_guard guard(shared.lock);
  auto& held = shared.transformers[std::string(forName)];
  held.swap(transformer);
  if (!held) shared.transformers.erase(std::string(forName));
}

std::shared_ptr<NSValueTransformer> NSValueTransformer::valueTransformerForName(
    std::string_view name) {
  Registry& shared = registry();
  const std::lock_guard guard(shared.lock);
  const auto found = shared.transformers.find(name);
  return found == shared.transformers.end() ? nullptr : found->second;
}

bool NSValueTransformer::allowsReverseTransformation() const { return false; }

id NSValueTransformer::reverseTransformedValue(const id& value) const {
  if (allowsReverseTransformation()) return transformedValue(value);
  throw NSException(NSInvalidArgumentException, className() + " has no reverse transformation");
}

}  // namespace ORLFoundation
