/// Passwords that the tool is given: typed at the terminal without being shown, or from a file, or
/// from the standard input. Never from an argument, which every user of the machine can see.
///
///     const Secret password = readSecret(arguments.passwordFile, "Password");
///     use(password.text());
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orlftool {

/// A text whose memory is overwritten when it goes.
class Secret {
 public:
  explicit Secret(std::string text) : text_(std::move(text)) {}
  ~Secret() { wipe(); }
  Secret(Secret&& other) noexcept : text_(std::move(other.text_)) { other.wipe(); }
  Secret& operator=(Secret&&) = delete;

  [[nodiscard]] std::string_view text() const noexcept { return text_; }

 private:
  void wipe() noexcept;

  std::string text_;
};

/// The secret in the file at a path, "-" for the standard input: all of it but one line end at its
/// end. Without a path the user is asked at the terminal, which shows the prompt and not what is
/// typed, wherever the standard streams lead. Throws JobFailure for a file that cannot be read, an
/// empty secret, one of more than 64 KB, and Ctrl-C; UsageFailure where there is no terminal.
[[nodiscard]] Secret readSecret(const std::optional<std::string>& path, std::string_view prompt);
/// The same for a secret that is new: the user is asked twice. Throws JobFailure for two answers.
[[nodiscard]] Secret readNewSecret(const std::optional<std::string>& path, std::string_view prompt);

}  // namespace orlftool
