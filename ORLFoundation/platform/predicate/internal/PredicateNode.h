/// The parts that a predicate is put together from. They never change, and are safe on any thread.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace ORLFoundation::internal::predicate {

/// A value of the object, or one that the format states.
struct PredicateExpression {
  struct KeyPath {
    std::string path;  // "SELF" is the object itself
  };
  using List = std::vector<PredicateExpression>;

  [[nodiscard]] id evaluate(const id& object) const;
  [[nodiscard]] std::string text() const;

  std::variant<id, KeyPath, List> value;
};

class PredicateNode {
 public:
  PredicateNode() = default;
  PredicateNode(const PredicateNode&) = delete;
  PredicateNode& operator=(const PredicateNode&) = delete;
  virtual ~PredicateNode() = default;

  [[nodiscard]] virtual bool matches(const id& object) const = 0;
  [[nodiscard]] virtual std::string text() const = 0;
  /// The text where it stands inside another condition.
  [[nodiscard]] virtual std::string innerText() const { return text(); }
};

using PredicateNodePointer = std::shared_ptr<const PredicateNode>;

class ConstantPredicate final : public PredicateNode {
 public:
  explicit ConstantPredicate(bool value) : value_(value) {}
  [[nodiscard]] bool matches(const id&) const override { return value_; }
  [[nodiscard]] std::string text() const override {
    return value_ ? "TRUEPREDICATE" : "FALSEPREDICATE";
  }

 private:
  const bool value_;
};

class CompoundPredicate final : public PredicateNode {
 public:
  enum class Kind : std::uint8_t { And, Or };
  CompoundPredicate(Kind kind, std::vector<PredicateNodePointer> members)
      : kind_(kind), members_(std::move(members)) {}
  [[nodiscard]] bool matches(const id& object) const override;
  [[nodiscard]] std::string text() const override;
  [[nodiscard]] std::string innerText() const override { return "(" + text() + ")"; }

 private:
  const Kind kind_;
  const std::vector<PredicateNodePointer> members_;
};

class NotPredicate final : public PredicateNode {
 public:
  explicit NotPredicate(PredicateNodePointer member) : member_(std::move(member)) {}
  [[nodiscard]] bool matches(const id& object) const override { return !member_->matches(object); }
  [[nodiscard]] std::string text() const override { return "NOT " + member_->innerText(); }

 private:
  const PredicateNodePointer member_;
};

enum class PredicateOperator : std::uint8_t {
  Equal,
  NotEqual,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Between,
  In,
  Contains,
  BeginsWith,
  EndsWith,
  Like,
  Matches,
};

enum class PredicateQuantifier : std::uint8_t { Direct, Any, All, None };

struct PredicateComparison {
  PredicateQuantifier quantifier = PredicateQuantifier::Direct;
  PredicateExpression left;
  PredicateOperator comparison = PredicateOperator::Equal;
  /// Bits of NSStringCompareOptions, and the modifiers as they were written, without brackets.
  NSUInteger options = 0;
  std::string modifiers;
  PredicateExpression right;
};

class ComparisonPredicate final : public PredicateNode {
 public:
  explicit ComparisonPredicate(PredicateComparison comparison)
      : comparison_(std::move(comparison)) {}
  [[nodiscard]] bool matches(const id& object) const override;
  [[nodiscard]] std::string text() const override;

 private:
  [[nodiscard]] bool holdsFor(const id& left, const id& right) const;
  const PredicateComparison comparison_;
};

}  // namespace ORLFoundation::internal::predicate
