/// The words and signs of the predicate language.
#pragma once

#include <ORLFoundation/platform/predicate/internal/PredicateNode.h>

#include <optional>
#include <string_view>

namespace ORLFoundation::internal::predicate {

enum class PredicateWord : std::uint8_t {
  And,
  Or,
  Not,
  TruePredicate,
  FalsePredicate,
  Any,
  All,
  None,
  Self,
  True,
  False,
  Nil,
};

/// In any mixture of cases; nil for other words.
[[nodiscard]] std::optional<PredicateWord> predicateWord(std::string_view text);
/// The comparison of a word or a sign; nil for others.
[[nodiscard]] std::optional<PredicateOperator> predicateOperator(std::string_view text);
/// As it is written: "==", "BEGINSWITH".
[[nodiscard]] std::string_view textOf(PredicateOperator comparison);

}  // namespace ORLFoundation::internal::predicate
