/// How far a document may still expand: few of its bytes can stand for many, or make much work.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/xml/internal/ElementDeclarations.h>

#include <string_view>

namespace ORLFoundation::internal::xml {

/// Counted in bytes of text, and in what takes as long. Operations answer false for what is too
/// much, which then is not taken.
class ExpansionBudget {
 public:
  explicit ExpansionBudget(NSUInteger most) noexcept : left_(most) {}

  /// The text of an entity. Once it is read nothing stops libxml2 inside of it, so that the
  /// default attributes of its tags count before: at most `defaults` each.
  [[nodiscard]] bool takeEntity(std::string_view text, const DefaultAttributes& defaults) noexcept;
  /// The text of a parameter entity, of which the words of a declaration are compared with each
  /// other.
  [[nodiscard]] bool takeDeclarations(std::string_view text) noexcept;
  /// The default attributes of one tag, a few of which cost nothing.
  [[nodiscard]] bool takeDefaults(const DefaultAttributes& defaults) noexcept;

 private:
  [[nodiscard]] bool take(NSUInteger cost) noexcept;

  NSUInteger left_;
};

}  // namespace ORLFoundation::internal::xml
