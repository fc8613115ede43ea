/// Variables of the process's environment, for tests.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace orlftest {

/// Sets a variable while it lives; a null value is none.
class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const char* value) : name_(std::move(name)) {
    if (const char* const before = std::getenv(name_.c_str())) before_ = before;
    set(value);
  }
  EnvironmentVariable(std::string name, const std::string& value)
      : EnvironmentVariable(std::move(name), value.c_str()) {}
  ~EnvironmentVariable() { set(before_ ? before_->c_str() : nullptr); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  /// Throws for a name that no variable can have.
  void set(const char* value) const {
    const char* const name = name_.c_str();
    if ((value == nullptr ? ::unsetenv(name) : ::setenv(name, value, 1)) != 0)
      throw std::system_error(errno, std::generic_category(), name_);
  }

 private:
  const std::string name_;
  std::optional<std::string> before_;
};

}  // namespace orlftest
