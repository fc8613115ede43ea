
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/text/NSRegularExpression.h>
#include <ORLFoundation/web/logging/internal/JSONFieldMask.h>

#include <utility>

namespace ORLFoundation {

using internal::logging::JSONFieldMask;

std::shared_ptr<ORLFURLSessionLogReplacement> ORLFURLSessionLogReplacement::initWithMatchExpression(
    std::string_view matchExpression, NSUInteger options, std::string_view replacement,
    NSErrorSlot error) {
  auto expression = NSRegularExpression::initWithPattern(matchExpression, options, error);
  if (!expression) return nullptr;
  return std::make_shared<ORLFURLSessionLogReplacement>(std::move(expression),
                                                        std::string(replacement));
}

std::shared_ptr<ORLFURLSessionLogReplacement> ORLFURLSessionLogReplacement::init() {
  return initWithMatchExpression("", 0, "");
}

std::shared_ptr<ORLFURLSessionLogReplacement> ORLFURLSessionLogReplacement::initWithJSONFieldName(
    std::string_view fieldName, std::string_view replacementValue) {
  const std::string pattern = R"((")" + NSRegularExpression::escapedPatternForString(fieldName) +
                              R"("\s*?:\s*?)([^,\]\}]*))";
  std::string replacement =
      R"($1")" + NSRegularExpression::escapedTemplateForString(replacementValue) + R"(")";
  return std::make_shared<ORLFURLSessionLogReplacement>(
      NSRegularExpression::initWithPattern(pattern, 0), std::move(replacement),
      std::make_unique<JSONFieldMask>(fieldName, replacementValue));
}

ORLFURLSessionLogReplacement::ORLFURLSessionLogReplacement(
    std::shared_ptr<NSRegularExpression> expression, std::string replacement,
    std::shared_ptr<const JSONFieldMask> mask)
    : expression_(std::move(expression)),
      replacement_(std::move(replacement)),
      mask_(std::move(mask)) {}

ORLFURLSessionLogReplacement::~ORLFURLSessionLogReplacement() = default;

std::optional<std::string> ORLFURLSessionLogReplacement::process(
    std::optional<std::string> string) {
  if (!string) return std::nullopt;
  if (mask_) return mask_->process(*string);
  auto masked = expression_->stringByReplacingMatchesInString(*string, replacement_);
  if (!masked) NSLog("A text was left out of a session's log: its mask came to a limit.");
  return masked;
}

}  // namespace ORLFoundation
