/// Passwords as the tool gets them: from a file, the standard input, or a prompt on the terminal
/// that shows nothing of them. Never from the command line, which others can see. What was read is
/// wiped from memory when it goes.
#pragma once

#include <ORLFoundation/platform/base/Wiped.h>

#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

class Secret {
 public:
  explicit Secret(ORLFoundation::internal::base::WipedBytes bytes) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::string_view text() const noexcept { return {bytes_.data(), bytes_.size()}; }

 private:
  ORLFoundation::internal::base::WipedBytes bytes_;
};

/// How a command asks for a password.
struct SecretRequest {
  /// The option that names a file, "--password-file", for messages.
  std::string_view option;
  /// Its value: a path, or "-" for the standard input. Without one the terminal is asked.
  const std::optional<std::string>& file;
  /// What the terminal shows, "Password of my.store: ".
  std::string prompt;
  /// Whether the terminal asks twice, as for passwords that are to be kept.
  bool isNew = false;
};

/// A file's password is all of it but a line end behind it. Throws UsageFailure without a file and
/// a terminal, JobFailure for what cannot be read, for more than 64 KB and for two words that
/// differ.
[[nodiscard]] Secret readSecret(const SecretRequest& request);

/// A line that is typed at the terminal, on any thread. Throws UsageFailure with the text
/// `otherwise` where there is no terminal, JobFailure where nothing is typed.
[[nodiscard]] Secret askOnTerminal(const std::string& prompt, const std::string& otherwise);

}  // namespace orlftool
