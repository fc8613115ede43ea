/// A question to the user: a message, more about it, and a button for each answer. How it is put to
/// people is up to the presenter in use (NSAlertPresenter.h).
///
///     if (NSAlert::alertWithError(error)->runModal() == NSAlertSecondButtonReturn) retry();
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

/// The answers of the first buttons; further ones count on.
inline constexpr NSInteger NSAlertFirstButtonReturn = 1000;
inline constexpr NSInteger NSAlertSecondButtonReturn = 1001;

class NSAlert final : public NSObject {
 public:
  NSAlert(std::string messageText, std::string informativeText, std::vector<std::string> buttons)
      : message_(std::move(messageText)),
        information_(std::move(informativeText)),
        buttons_(std::move(buttons)) {}
  /// `alertWithError:`  The error's description, its recovery suggestion (else its failure reason)
  /// and its recovery options; "OK" for an error that has none.
  [[nodiscard]] static std::shared_ptr<NSAlert> alertWithError(const NSError& error);

  [[nodiscard]] const std::string& messageText() const noexcept { return message_; }
  [[nodiscard]] const std::string& informativeText() const noexcept { return information_; }
  [[nodiscard]] const std::vector<std::string>& buttons() const noexcept { return buttons_; }

  /// `runModal`  Puts the question and waits for the answer: 1000 for the first button, 1001 for
  /// the second, and so on.
  [[nodiscard]] NSInteger runModal() const;

  [[nodiscard]] std::string className() const override { return "NSAlert"; }

 private:
  const std::string message_;
  const std::string information_;
  const std::vector<std::string> buttons_;
};

}  // namespace ORLFoundation
