
#include <ORLFoundation/platform/predicate/NSPredicate.h>

#include <ORLFoundation/platform/predicate/internal/PredicateParser.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <functional>
#include <utility>

namespace ORLFoundation {

NSPredicate::NSPredicate(std::shared_ptr<const internal::predicate::PredicateNode> root)
    : root_(std::move(root)) {}

std::shared_ptr<NSPredicate> NSPredicate::predicateWithFormatArgumentArray(
    std::string_view format, std::span<const id> argumentArray) {
  try {
    return std::make_shared<NSPredicate>(
        internal::predicate::PredicateParser(format, argumentArray).parse());
  } catch (const internal::predicate::PredicateFault&) {
    throw NSException(NSInvalidArgumentException,
                      "Unable to parse the format string \"" + std::string(format) + "\"");
  }
}

std::shared_ptr<NSPredicate> NSPredicate::predicateWithValue(bool value) {
  return std::make_shared<NSPredicate>(
      std::make_shared<internal::predicate::ConstantPredicate>(value));
}

bool NSPredicate::evaluateWithObject(const id& object) const { return root_->matches(object); }

std::string NSPredicate::predicateFormat() const { return root_->text(); }

bool NSPredicate::isEqual(const NSObject* other) const {
  const auto* predicate = dynamic_cast<const NSPredicate*>(other);
  return predicate != nullptr && predicate->predicateFormat() == predicateFormat();
}

NSUInteger NSPredicate::hash() const { return std::hash<std::string>()(predicateFormat()); }

}  // namespace ORLFoundation
