
#include <ORLFoundation/platform/text/NSRegularExpression.h>

#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/text/internal/ReplacementTemplate.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/regex.h>

#include <cstdint>
#include <ctime>
#include <functional>
#include <utility>

namespace ORLFoundation {

struct NSRegularExpression::Compiled {
  std::unique_ptr<icu::RegexPattern> pattern;
};

namespace {

using internal::text::ReplacementTemplate;
using internal::text::utf16Of;
using internal::text::utf8Of;

constexpr std::int32_t kLargestStack = 8 * 1024 * 1024;
constexpr std::int64_t kNanosecondsAtLeast = 250'000'000;
constexpr std::int64_t kNanosecondsPerCharacter = 250;

struct Flag {
  NSRegularExpressionOptions option;
  std::uint32_t flag;
};
constexpr Flag kFlags[] = {
    {NSRegularExpressionCaseInsensitive, UREGEX_CASE_INSENSITIVE},
    {NSRegularExpressionAllowCommentsAndWhitespace, UREGEX_COMMENTS},
    {NSRegularExpressionIgnoreMetacharacters, UREGEX_LITERAL},
    {NSRegularExpressionDotMatchesLineSeparators, UREGEX_DOTALL},
    {NSRegularExpressionAnchorsMatchLines, UREGEX_MULTILINE},
    {NSRegularExpressionUseUnixLineSeparators, UREGEX_UNIX_LINES},
    {NSRegularExpressionUseUnicodeWordBoundaries, UREGEX_UWORD},
};

std::uint32_t flagsOf(NSUInteger options) {
  std::uint32_t flags = 0;
  for (const Flag& flag : kFlags)
    if ((options & flag.option) != 0) flags |= flag.flag;
  return flags;
}

std::int64_t nanosecondsOf(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

/// The processor's time that one replacement may take. It is asked for at each place where a match
/// may begin, so the time itself is read only when the coarse clock, which costs next to nothing,
/// has moved on.
class TimeBudget {
 public:
  explicit TimeBudget(std::int32_t characters)
      : end_(nanosecondsOf(CLOCK_THREAD_CPUTIME_ID) + kNanosecondsAtLeast +
             kNanosecondsPerCharacter * characters) {}

  [[nodiscard]] bool isSpent() const {
    const std::int64_t now = nanosecondsOf(CLOCK_MONOTONIC_COARSE);
    if (now == asked_) return false;
    asked_ = now;
    return nanosecondsOf(CLOCK_THREAD_CPUTIME_ID) > end_;
  }

 private:
  const std::int64_t end_;
  mutable std::int64_t asked_ = 0;
};

UBool U_CALLCONV goesOnMatching(const void* budget, std::int32_t /*steps*/) {
  return static_cast<const TimeBudget*>(budget)->isSpent() ? 0 : 1;
}

UBool U_CALLCONV goesOnFinding(const void* budget, std::int64_t /*index*/) {
  return static_cast<const TimeBudget*>(budget)->isSpent() ? 0 : 1;
}

std::optional<std::string> tooMuch(NSErrorSlot error) {
  NSFillErrorSlot(error, NSCocoaErrorDomain, NSRegularExpressionLimitError,
                  "The expression takes too much time or memory on this text.");
  return std::nullopt;
}

/// The text with the matches replaced; nil on a limit.
std::optional<std::string> replaced(const icu::RegexPattern& pattern,
                                    const icu::UnicodeString& text,
                                    const ReplacementTemplate& replacement) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(text, status));
  if (U_FAILURE(status)) return std::nullopt;
  const TimeBudget budget(text.length());
  matcher->setStackLimit(kLargestStack, status);
  matcher->setMatchCallback(&goesOnMatching, &budget, status);
  matcher->setFindProgressCallback(&goesOnFinding, &budget, status);
  icu::UnicodeString answer;
  std::int32_t taken = 0;
  while (U_SUCCESS(status) && matcher->find(status) != 0) {
    answer.append(text, taken, matcher->start(status) - taken);
    replacement.appendTo(answer, text, *matcher);
    taken = matcher->end(status);
    if (answer.isBogus() != 0) return std::nullopt;
  }
  answer.append(text, taken, text.length() - taken);
  if (U_FAILURE(status) || answer.isBogus() != 0) return std::nullopt;
  return utf8Of(answer);
}

std::string escaped(std::string_view text, std::string_view characters) {
  std::string pattern;
  pattern.reserve(text.size());
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) pattern += '\\';
    pattern += c;
  }
  return pattern;
}

}  // namespace

std::shared_ptr<NSRegularExpression> NSRegularExpression::initWithPattern(std::string_view pattern,
                                                                          NSUInteger options,
                                                                          NSErrorSlot error) {
  UErrorCode status = pattern.empty() ? U_ILLEGAL_ARGUMENT_ERROR : U_ZERO_ERROR;
  auto compiled = std::make_unique<Compiled>();
  if (U_SUCCESS(status))
    compiled->pattern.reset(icu::RegexPattern::compile(utf16Of(pattern), flagsOf(options), status));
  if (U_SUCCESS(status))
    return std::make_shared<NSRegularExpression>(pattern, options, std::move(compiled));
  NSFillErrorSlot(error, NSCocoaErrorDomain, NSRegularExpressionPatternError,
                  "The value “" + std::string(pattern) + "” is invalid.");
  return nullptr;
}

NSRegularExpression::NSRegularExpression(std::string_view pattern, NSUInteger options,
                                         std::unique_ptr<const Compiled> compiled)
    : pattern_(pattern), options_(options), compiled_(std::move(compiled)) {}

NSRegularExpression::~NSRegularExpression() = default;

NSUInteger NSRegularExpression::numberOfCaptureGroups() const {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(status));
  return U_SUCCESS(status) ? static_cast<NSUInteger>(matcher->groupCount()) : 0;
}

std::optional<std::string> NSRegularExpression::stringByReplacingMatchesInString(
    std::string_view string, std::string_view withTemplate, NSErrorSlot error) const {
  try {
    const ReplacementTemplate replacement(utf16Of(withTemplate), *compiled_->pattern,
                                          static_cast<std::int32_t>(numberOfCaptureGroups()));
    auto answer = replaced(*compiled_->pattern, utf16Of(string), replacement);
    return answer ? std::move(answer) : tooMuch(error);
  } catch (const NSException&) {  // a text that UTF-16 does not hold
    return tooMuch(error);
  }
}

std::string NSRegularExpression::escapedPatternForString(std::string_view string) {
  return escaped(string, R"(*?+[(){}^$|\./)");
}

std::string NSRegularExpression::escapedTemplateForString(std::string_view string) {
  return escaped(string, R"($\)");
}

bool NSRegularExpression::isEqual(const NSObject* other) const {
  const auto* expression = dynamic_cast<const NSRegularExpression*>(other);
  return expression && expression->pattern_ == pattern_ && expression->options_ == options_;
}

NSUInteger NSRegularExpression::hash() const {
  return std::hash<std::string>{}(pattern_)*31 + options_;
}

std::shared_ptr<NSObject> NSRegularExpression::copy() {
  return receiverOr([this] { return initWithPattern(pattern_, options_); });
}

}  // namespace ORLFoundation
