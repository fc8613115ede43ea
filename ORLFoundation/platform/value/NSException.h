/// A raised exception: a name that tells the kind, a reason for people.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace ORLFoundation {

class NSException : public std::runtime_error {
 public:
  NSException(std::string name, const std::string& reason)
      : std::runtime_error(reason), name_(std::move(name)) {}

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  [[nodiscard]] std::string reason() const { return what(); }

 private:
  std::string name_;
};

inline constexpr const char* NSInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr const char* NSGenericException = "NSGenericException";
inline constexpr const char* NSRangeException = "NSRangeException";
inline constexpr const char* NSUndefinedKeyException = "NSUnknownKeyException";

}  // namespace ORLFoundation
