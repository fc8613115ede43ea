/// Reads the format of a predicate.
#pragma once

#include <ORLFoundation/platform/predicate/internal/PredicateLexer.h>
#include <ORLFoundation/platform/predicate/internal/PredicateNode.h>
#include <ORLFoundation/platform/predicate/internal/PredicateWords.h>

#include <optional>
#include <span>
#include <string_view>

namespace ORLFoundation::internal::predicate {

class PredicateParser {
 public:
  PredicateParser(std::string_view format, std::span<const id> arguments);

  /// The whole format as a condition. Throws PredicateFault.
  [[nodiscard]] PredicateNodePointer parse();

 private:
  /// A condition, or a value: which of them stands in parentheses shows only behind them.
  struct Part {
    PredicateNodePointer condition;
    std::optional<PredicateExpression> value;
  };
  using Reader = Part (PredicateParser::*)();

  [[nodiscard]] Part any();
  [[nodiscard]] Part all();
  [[nodiscard]] Part joined(PredicateWord word, CompoundPredicate::Kind kind, Reader readMember);
  [[nodiscard]] Part negated();
  [[nodiscard]] Part simple();
  [[nodiscard]] Part inParentheses();
  [[nodiscard]] Part comparisonOf(PredicateExpression left);
  [[nodiscard]] Part quantified(PredicateQuantifier quantifier);
  [[nodiscard]] PredicateComparison comparisonWith(PredicateExpression left);
  void readModifiers(PredicateComparison& comparison);

  [[nodiscard]] PredicateExpression value();
  [[nodiscard]] PredicateExpression wordValue();
  [[nodiscard]] PredicateExpression signValue();
  [[nodiscard]] PredicateExpression list();
  [[nodiscard]] const id& nextArgument();

  [[nodiscard]] bool isWord(PredicateWord word) const;
  [[nodiscard]] std::optional<PredicateWord> currentWord() const;
  [[nodiscard]] bool takeSign(std::string_view sign);
  void expectSign(std::string_view sign);
  PredicateToken take();

  PredicateLexer lexer_;
  std::span<const id> arguments_;
  PredicateToken token_;
  int depth_ = 0;
};

}  // namespace ORLFoundation::internal::predicate
