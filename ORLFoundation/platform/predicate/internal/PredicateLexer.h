/// Cuts the format of a predicate into its words.
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::predicate {

/// The format is none. Stays inside this folder: callers hear of an NSException.
struct PredicateFault : std::runtime_error {
  PredicateFault() : std::runtime_error("wrong predicate format") {}
};

struct PredicateToken {
  enum class Kind : std::uint8_t {
    End,
    /// A word, which may be a key path.
    Word,
    /// A key path that is none of the language's words: it had "#" before it.
    KeyPath,
    /// A number or a text in quotes, in `value`.
    Value,
    Sign,
    /// %K, and what takes a value.
    KeyArgument,
    ValueArgument,
  };
  Kind kind = Kind::End;
  std::string text;
  id value;
};

class PredicateLexer {
 public:
  explicit PredicateLexer(std::string_view format) noexcept : format_(format) {}

  /// The next token. Throws PredicateFault.
  [[nodiscard]] PredicateToken next();

 private:
  void skipSpace() noexcept;
  [[nodiscard]] PredicateToken word();
  [[nodiscard]] PredicateToken number();
  [[nodiscard]] PredicateToken quotedText();
  [[nodiscard]] PredicateToken argument();
  [[nodiscard]] PredicateToken sign();
  char escapedCharacter();

  std::string_view format_;
  std::size_t at_ = 0;
};

}  // namespace ORLFoundation::internal::predicate
