/// What a text goes through on its way into a session's log, such as a mask over passwords.
///
///     class Shortened : public ORLFURLSessionLogProcessor {
///       std::optional<std::string> process(std::optional<std::string> string) override {
///         if (string) string->resize(std::min<std::size_t>(string->size(), 1000));
///         return string;
///       }
///     };
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <optional>
#include <string>

namespace ORLFoundation {

class ORLFURLSessionLogProcessor : public NSObject {
 public:
  /// `process:`  The text as it is to stand in the log. nil, for a body that is absent, comes here
  /// too, and nil is no text. Several threads may call at a time. What it throws leaves the text
  /// out of the log.
  [[nodiscard]] virtual std::optional<std::string> process(std::optional<std::string> string) = 0;

  [[nodiscard]] std::string className() const override { return "ORLFURLSessionLogProcessor"; }
};

}  // namespace ORLFoundation
