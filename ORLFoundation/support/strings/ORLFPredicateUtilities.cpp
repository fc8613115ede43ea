
#include <ORLFoundation/support/strings/ORLFPredicateUtilities.h>

#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/support/strings/internal/ORLFPredicateFormat.h>

#include <string>

namespace ORLFoundation {
namespace internal::strings {

std::string stringPredicateFormat(std::string_view comparisonOperator, bool caseInsensitive,
                                  bool diacriticInsensitive) {
  constexpr std::size_t kShortestModifiers = 3;
  std::string modifiers =
      stringWithFormat("[%@%@]", caseInsensitive ? "c" : "", diacriticInsensitive ? "d" : "");
  if (modifiers.size() < kShortestModifiers) modifiers.clear();
  return stringWithFormat("%%K %@%@ %%@", comparisonOperator, modifiers);
}

}  // namespace internal::strings

std::shared_ptr<NSPredicate> orlfStringPredicate(const ORLFStringPredicate& predicate) {
  const std::string format = internal::strings::stringPredicateFormat(
      predicate.comparisonOperator, predicate.caseInsensitive, predicate.diacriticInsensitive);
  return NSPredicate::predicateWithFormat(format, predicate.withKey, predicate.value);
}

std::shared_ptr<NSPredicate> orlfStringEqualsPredicateWithKey(std::string_view key,
                                                              bool caseInsensitive,
                                                              bool diacriticInsensitive,
                                                              const id& value) {
  return orlfStringPredicate({"==", key, caseInsensitive, diacriticInsensitive, value});
}

std::shared_ptr<NSPredicate> orlfStringMatchPredicateWithKey(std::string_view key,
                                                             bool caseInsensitive,
                                                             bool diacriticInsensitive,
                                                             const id& value) {
  return orlfStringPredicate({"MATCHES", key, caseInsensitive, diacriticInsensitive, value});
}

}  // namespace ORLFoundation
