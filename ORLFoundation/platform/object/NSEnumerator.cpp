
#include <ORLFoundation/platform/object/NSEnumerator.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <utility>

namespace ORLFoundation {
namespace {

class ListEnumerator final : public NSEnumerator {
 public:
  explicit ListEnumerator(std::vector<id> objects) : objects_(std::move(objects)) {}

  [[nodiscard]] id nextObject() override {
    return next_ < objects_.size() ? std::move(objects_[next_++]) : id();
  }

 private:
  std::vector<id> objects_;
  std::size_t next_ = 0;
};

}  // namespace

std::shared_ptr<NSEnumerator> NSEnumerator::enumeratorWithObjects(std::vector<id> objects) {
  return std::make_shared<ListEnumerator>(std::move(objects));
}

std::shared_ptr<NSArray> NSEnumerator::allObjects() {
  std::vector<id> rest;
  while (id object = nextObject()) rest.push_back(std::move(object));
  return std::make_shared<NSArray>(std::move(rest));
}

void NSFastEnumerationState::requireUnchanged(const NSObject& collection,
                                              std::size_t mutationsNow) {
  if (!mutations) mutations = mutationsNow;
  if (*mutations == mutationsNow) return;
  throw NSException(NSGenericException, "*** Collection <" + collection.className() +
                                            "> was mutated while being enumerated.");
}

}  // namespace ORLFoundation
