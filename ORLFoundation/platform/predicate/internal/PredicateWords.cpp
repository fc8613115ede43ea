
#include <ORLFoundation/platform/predicate/internal/PredicateWords.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <iterator>

namespace ORLFoundation::internal::predicate {
namespace {

struct WordRow {
  std::string_view lower;
  PredicateWord word;
};
constexpr WordRow kWords[] = {
    {"and", PredicateWord::And},
    {"&&", PredicateWord::And},
    {"or", PredicateWord::Or},
    {"||", PredicateWord::Or},
    {"not", PredicateWord::Not},
    {"!", PredicateWord::Not},
    {"truepredicate", PredicateWord::TruePredicate},
    {"falsepredicate", PredicateWord::FalsePredicate},
    {"any", PredicateWord::Any},
    {"some", PredicateWord::Any},
    {"all", PredicateWord::All},
    {"none", PredicateWord::None},
    {"self", PredicateWord::Self},
    {"true", PredicateWord::True},
    {"yes", PredicateWord::True},
    {"false", PredicateWord::False},
    {"no", PredicateWord::False},
    {"nil", PredicateWord::Nil},
    {"null", PredicateWord::Nil},
};

struct OperatorRow {
  std::string_view lower;
  PredicateOperator comparison;
  std::string_view text;
};
// The first row of a comparison has the text that it is written with.
constexpr OperatorRow kOperators[] = {
    {"==", PredicateOperator::Equal, "=="},
    {"=", PredicateOperator::Equal, "=="},
    {"!=", PredicateOperator::NotEqual, "!="},
    {"<>", PredicateOperator::NotEqual, "!="},
    {"<", PredicateOperator::Less, "<"},
    {"<=", PredicateOperator::LessOrEqual, "<="},
    {"=<", PredicateOperator::LessOrEqual, "<="},
    {">", PredicateOperator::Greater, ">"},
    {">=", PredicateOperator::GreaterOrEqual, ">="},
    {"=>", PredicateOperator::GreaterOrEqual, ">="},
    {"between", PredicateOperator::Between, "BETWEEN"},
    {"in", PredicateOperator::In, "IN"},
    {"contains", PredicateOperator::Contains, "CONTAINS"},
    {"beginswith", PredicateOperator::BeginsWith, "BEGINSWITH"},
    {"endswith", PredicateOperator::EndsWith, "ENDSWITH"},
    {"like", PredicateOperator::Like, "LIKE"},
    {"matches", PredicateOperator::Matches, "MATCHES"},
};

}  // namespace

std::optional<PredicateWord> predicateWord(std::string_view text) {
  const auto* const row =
      std::find_if(std::begin(kWords), std::end(kWords),
                   [text](const WordRow& known) { return base::equalsLower(text, known.lower); });
  return row == std::end(kWords) ? std::nullopt : std::optional(row->word);
}

std::optional<PredicateOperator> predicateOperator(std::string_view text) {
  const auto* const row = std::find_if(
      std::begin(kOperators), std::end(kOperators),
      [text](const OperatorRow& known) { return base::equalsLower(text, known.lower); });
  return row == std::end(kOperators) ? std::nullopt : std::optional(row->comparison);
}

std::string_view textOf(PredicateOperator comparison) {
  return std::find_if(std::begin(kOperators), std::end(kOperators),
                      [comparison](const OperatorRow& row) { return row.comparison == comparison; })
      ->text;
}

}  // namespace ORLFoundation::internal::predicate
