/// Predicates that compare the text under a key.
///
///     orlfStringEqualsPredicateWithKey("payee", true, true, "cafe");   // payee ==[cd] "cafe"
///
/// Each raises `NSInvalidArgumentException` where `predicateWithFormat` does.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/predicate/NSPredicate.h>

#include <memory>
#include <string_view>

namespace ORLFoundation {

struct ORLFStringPredicate {
  /// "==", "MATCHES", "BEGINSWITH", ...
  std::string_view comparisonOperator;
  /// A key path.
  std::string_view withKey;
  bool caseInsensitive = false;
  bool diacriticInsensitive = false;
  id value;
};

/// `orlfStringPredicate:withKey:caseInsensitive:diacriticInsensitive:value:`  The operator is taken
/// into the format as it is; without either flag it has no brackets.
[[nodiscard]] std::shared_ptr<NSPredicate> orlfStringPredicate(
    const ORLFStringPredicate& predicate);
/// `orlfStringEqualsPredicateWithKey:caseInsensitive:diacriticInsensitive:value:`
[[nodiscard]] std::shared_ptr<NSPredicate> orlfStringEqualsPredicateWithKey(
    std::string_view key, bool caseInsensitive, bool diacriticInsensitive, const id& value);
/// `orlfStringMatchPredicateWithKey:caseInsensitive:diacriticInsensitive:value:`  The value is a
/// regular expression that must fit the whole text.
[[nodiscard]] std::shared_ptr<NSPredicate> orlfStringMatchPredicateWithKey(
    std::string_view key, bool caseInsensitive, bool diacriticInsensitive, const id& value);

}  // namespace ORLFoundation
