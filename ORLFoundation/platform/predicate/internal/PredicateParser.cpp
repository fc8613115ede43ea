
#include <ORLFoundation/platform/predicate/internal/PredicateParser.h>

#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <utility>

namespace ORLFoundation::internal::predicate {
namespace {

using Kind = PredicateToken::Kind;

constexpr int kDeepest = 100;

/// Counts how deep conditions and lists stand in each other.
class Deeper {
 public:
  explicit Deeper(int& depth) : depth_(depth) {
    if (depth_ >= kDeepest) throw PredicateFault();
    ++depth_;
  }
  ~Deeper() { --depth_; }
  Deeper(const Deeper&) = delete;
  Deeper& operator=(const Deeper&) = delete;

 private:
  int& depth_;
};

struct Modifier {
  char letter;
  NSUInteger option;
};
constexpr Modifier kModifiers[] = {{'c', NSCaseInsensitiveSearch},
                                   {'d', NSDiacriticInsensitiveSearch},
                                   {'n', NSLiteralSearch},
                                   {'l', 0}};

NSUInteger optionOf(char letter) {
  for (const Modifier& modifier : kModifiers)
    if (modifier.letter == letter) return modifier.option;
  throw PredicateFault();
}

PredicateExpression constant(id value) { return {std::move(value)}; }
PredicateExpression keyPath(std::string path) {
  return {PredicateExpression::KeyPath{std::move(path)}};
}

PredicateNodePointer conditionOf(const PredicateNodePointer& condition) {
  if (!condition) throw PredicateFault();
  return condition;
}

}  // namespace

PredicateParser::PredicateParser(std::string_view format, std::span<const id> arguments)
    : lexer_(format), arguments_(arguments), token_(lexer_.next()) {}

PredicateNodePointer PredicateParser::parse() {
  PredicateNodePointer condition = conditionOf(any().condition);
  if (token_.kind != Kind::End) throw PredicateFault();
  return condition;
}

PredicateParser::Part PredicateParser::any() {
  return joined(PredicateWord::Or, CompoundPredicate::Kind::Or, &PredicateParser::all);
}

PredicateParser::Part PredicateParser::all() {
  return joined(PredicateWord::And, CompoundPredicate::Kind::And, &PredicateParser::negated);
}

PredicateParser::Part PredicateParser::joined(PredicateWord word, CompoundPredicate::Kind kind,
                                              Reader readMember) {
  Part first = (this->*readMember)();
  if (!isWord(word)) return first;
  std::vector<PredicateNodePointer> members{conditionOf(first.condition)};
  while (isWord(word)) {
    take();
    members.push_back(conditionOf((this->*readMember)().condition));
  }
  return {std::make_shared<CompoundPredicate>(kind, std::move(members)), std::nullopt};
}

PredicateParser::Part PredicateParser::negated() {
  const Deeper deeper(depth_);
  if (!isWord(PredicateWord::Not)) return simple();
  take();
  return {std::make_shared<NotPredicate>(conditionOf(negated().condition)), std::nullopt};
}

PredicateParser::Part PredicateParser::simple() {
  if (takeSign("(")) return inParentheses();
  switch (currentWord().value_or(PredicateWord::Self)) {
    case PredicateWord::TruePredicate:
      take();
      return {std::make_shared<ConstantPredicate>(true), std::nullopt};
    case PredicateWord::FalsePredicate:
      take();
      return {std::make_shared<ConstantPredicate>(false), std::nullopt};
    case PredicateWord::Any:
      return quantified(PredicateQuantifier::Any);
    case PredicateWord::All:
      return quantified(PredicateQuantifier::All);
    case PredicateWord::None:
      return quantified(PredicateQuantifier::None);
    default:
      return comparisonOf(value());
  }
}

PredicateParser::Part PredicateParser::inParentheses() {
  Part part = any();
  expectSign(")");
  return part.condition ? part : comparisonOf(std::move(*part.value));
}

/// A comparison, or the value alone when none follows.
PredicateParser::Part PredicateParser::comparisonOf(PredicateExpression left) {
  const bool follows = (token_.kind == Kind::Word || token_.kind == Kind::Sign) &&
                       predicateOperator(token_.text).has_value();
  if (!follows) return {nullptr, std::move(left)};
  return {std::make_shared<ComparisonPredicate>(comparisonWith(std::move(left))), std::nullopt};
}

PredicateParser::Part PredicateParser::quantified(PredicateQuantifier quantifier) {
  take();
  PredicateComparison comparison = comparisonWith(value());
  comparison.quantifier = quantifier;
  return {std::make_shared<ComparisonPredicate>(std::move(comparison)), std::nullopt};
}

PredicateComparison PredicateParser::comparisonWith(PredicateExpression left) {
  const auto comparison = predicateOperator(token_.text);
  if (!comparison || (token_.kind != Kind::Word && token_.kind != Kind::Sign))
    throw PredicateFault();
  take();
  PredicateComparison result;
  result.left = std::move(left);
  result.comparison = *comparison;
  if (takeSign("[")) readModifiers(result);
  result.right = value();
  return result;
}

void PredicateParser::readModifiers(PredicateComparison& comparison) {
  if (token_.kind != Kind::Word) throw PredicateFault();
  comparison.modifiers = take().text;
  for (const char letter : comparison.modifiers) comparison.options |= optionOf(letter);
  expectSign("]");
}

PredicateExpression PredicateParser::value() {
  const Deeper deeper(depth_);
  switch (token_.kind) {
    case Kind::Value:
      return constant(take().value);
    case Kind::KeyPath:
      return keyPath(take().text);
    case Kind::Word:
      return wordValue();
    case Kind::Sign:
      return signValue();
    case Kind::ValueArgument:
      take();
      return constant(nextArgument());
    case Kind::KeyArgument: {
      take();
      const auto path = nextArgument().as<std::string>();
      if (!path) throw PredicateFault();
      return keyPath(*path);
    }
    case Kind::End:
      break;
  }
  throw PredicateFault();
}

PredicateExpression PredicateParser::wordValue() {
  const std::optional<PredicateWord> word = currentWord();
  if (predicateOperator(token_.text)) throw PredicateFault();
  const std::string text = take().text;
  if (!word) return keyPath(text);
  switch (*word) {
    case PredicateWord::Self:
      return keyPath("SELF");
    case PredicateWord::True:
      return constant(true);
    case PredicateWord::False:
      return constant(false);
    case PredicateWord::Nil:
      return constant(nullptr);
    default:
      throw PredicateFault();
  }
}

PredicateExpression PredicateParser::signValue() {
  if (takeSign("{")) return list();
  if (takeSign("(")) {
    PredicateExpression inner = value();
    expectSign(")");
    return inner;
  }
  if (!takeSign("-")) throw PredicateFault();
  const auto number = take().value.as<NSNumber>();
  if (!number) throw PredicateFault();
  if (number->kind() == NSNumber::Kind::Integer) return constant(-number->integerValue());
  return constant(-number->doubleValue());
}

PredicateExpression PredicateParser::list() {
  PredicateExpression::List members;
  if (takeSign("}")) return {std::move(members)};
  do members.push_back(value());
  while (takeSign(","));
  expectSign("}");
  return {std::move(members)};
}

const id& PredicateParser::nextArgument() {
  if (arguments_.empty()) throw PredicateFault();
  const id& argument = arguments_.front();
  arguments_ = arguments_.subspan(1);
  return argument;
}

std::optional<PredicateWord> PredicateParser::currentWord() const {
  const bool isReadable = token_.kind == Kind::Word || token_.kind == Kind::Sign;
  return isReadable ? predicateWord(token_.text) : std::nullopt;
}

bool PredicateParser::isWord(PredicateWord word) const { return currentWord() == word; }

bool PredicateParser::takeSign(std::string_view sign) {
  if (token_.kind != Kind::Sign || token_.text != sign) return false;
  take();
  return true;
}

void PredicateParser::expectSign(std::string_view sign) {
  if (!takeSign(sign)) throw PredicateFault();
}

PredicateToken PredicateParser::take() { return std::exchange(token_, lexer_.next()); }

}  // namespace ORLFoundation::internal::predicate
