/// A condition on an object, read from a text.
///
///     const auto late =
///         NSPredicate::predicateWithFormat("%K ==[cd] %@ AND amount > 100", "payee", "Café");
///     late->evaluateWithObject(transaction);
///
/// Comparisons: ==, =, !=, <>, <, <=, =<, >, >=, =>, BETWEEN {low, high}, IN, CONTAINS, BEGINSWITH,
/// ENDSWITH, LIKE (? stands for one character, * for any number, \ takes the next one as it is) and
/// MATCHES (a regular expression of ICU's that must fit the whole text). Those on texts take
/// modifiers: [c] passes over case, [d] over diacritics, [n] compares characters as they are, [l]
/// changes nothing. Before a comparison ANY, SOME, ALL or NONE ask the members of a collection.
/// Conditions are joined by AND or &&, OR or ||, NOT or !, and parentheses; TRUEPREDICATE and
/// FALSEPREDICATE are conditions too.
///
/// Values: key paths (# before one that is spelled like a word of this language), SELF, numbers,
/// texts in " or ', TRUE, YES, FALSE, NO, NIL, NULL, lists in braces. %K takes the next argument as
/// a key path; %@, %d, %i, %u, %ld, %lu, %lld, %llu and %f take it as a value. Words are read in
/// any case. Sums, functions and $variables are not read.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

namespace internal::predicate {
class PredicateNode;
}  // namespace internal::predicate

class NSPredicate final : public NSObject {
 public:
  explicit NSPredicate(std::shared_ptr<const internal::predicate::PredicateNode> root);

  /// `predicateWithFormat:`  Never null. Raises `NSInvalidArgumentException` ("Unable to parse the
  /// format string ...") for a text that is none of the above, for an argument too few and for
  /// conditions more than 100 deep. Arguments too many are passed over.
  template <class... Arguments>
  [[nodiscard]] static std::shared_ptr<NSPredicate> predicateWithFormat(
      std::string_view format, const Arguments&... arguments) {
    // One more than needed, since an array cannot be empty.
    const id list[] = {id(arguments)..., id()};
    return predicateWithFormatArgumentArray(format, std::span(list, sizeof...(arguments)));
  }
  /// `predicateWithFormat:argumentArray:`
  [[nodiscard]] static std::shared_ptr<NSPredicate> predicateWithFormatArgumentArray(
      std::string_view format, std::span<const id> argumentArray);
  /// `predicateWithValue:`
  [[nodiscard]] static std::shared_ptr<NSPredicate> predicateWithValue(bool value);

  /// `evaluateWithObject:`  nil equals nil alone and fits no other comparison. Texts compare as
  /// NSStringSearch.h tells, an empty text begins, ends and is held by none. Raises
  /// `NSInvalidArgumentException` for values that a comparison cannot take (an order of a number
  /// and a text, MATCHES on a date), for a regular expression that is none, and for one that takes
  /// more than about a second; and what the object raises for a key that it does not know.
  [[nodiscard]] bool evaluateWithObject(const id& object) const;

  /// `predicateFormat`  The condition as text, arguments put in: "payee ==[cd] \"Café\" AND amount
  /// > 100".
  [[nodiscard]] std::string predicateFormat() const;

  [[nodiscard]] std::string className() const override { return "NSPredicate"; }
  /// Conditions of equal text.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::string description() const override { return predicateFormat(); }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<NSPredicate>(root_); });
  }

 private:
  const std::shared_ptr<const internal::predicate::PredicateNode> root_;
};

}  // namespace ORLFoundation
