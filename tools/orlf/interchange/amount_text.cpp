#include "interchange/amount_text.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>

#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::isDigit;
using internal::base::isLetter;
using internal::base::isUpperLetter;

constexpr std::size_t kLongestAmount = 200;
constexpr std::size_t kGroup = 3;
constexpr std::size_t kLeastGroup = 2;
/// What stands for a blank or an apostrophe between groups.
constexpr char kGap = '\'';
constexpr std::string_view kMinus = "\u2212";
constexpr std::array<std::string_view, 6> kGaps{" ", "\u00A0", "\u2009", "\u202F", "\u2019", "'"};

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool takeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

/// Whether there were blanks to trim.
bool trim(std::string_view& text) {
  const std::size_t before = text.size();
  while (takePrefix(text, " ") || takePrefix(text, "\u00A0") || takePrefix(text, "\t")) {
  }
  while (takeSuffix(text, " ") || takeSuffix(text, "\u00A0") || takeSuffix(text, "\t")) {
  }
  return text.size() != before;
}

bool isOfNumber(char c) { return isDigit(c) || c == '.' || c == ','; }

/// Whether letters and signs beside a number name a currency and say nothing of its sign, as "DR"
/// would.
bool isCurrency(std::string_view text) {
  constexpr std::size_t kLetters = 3;
  constexpr std::size_t kLongest = 8;
  if (text.size() > kLongest || text.find_first_of("()-+%/") != text.npos) return false;
  if (text.find(kMinus) != text.npos) return false;
  const bool hasSign = std::any_of(text.begin(), text.end(),
                                   [](char c) { return c == '$' || !internal::base::isASCII(c); });
  const bool isCode = text.size() == kLetters && std::all_of(text.begin(), text.end(), [](char c) {
                        return isUpperLetter(c);
                      });
  return hasSign || isCode || internal::base::equalsLower(text, "kr");
}

/// The digits of groups that one mark parts; empty for other text.
std::string joinedGroups(std::string_view whole, char decimal) {
  const std::size_t firstMark = whole.find_first_not_of("0123456789");
  if (firstMark == whole.npos) return std::string(whole);
  const char mark = whole[firstMark];
  std::string digits(whole.substr(0, firstMark));
  if (mark == decimal || digits.size() > kGroup) return {};
  if (digits.find_first_not_of('0') == digits.npos) return {};
  for (std::size_t at = firstMark; at < whole.size();) {
    if (whole[at] != mark) return {};
    const std::size_t end = std::min(whole.find(mark, at + 1), whole.size());
    const std::string_view group = whole.substr(at + 1, end - at - 1);
    const bool isLast = end == whole.size();
    if (group.size() > kGroup || group.size() < (isLast ? kGroup : kLeastGroup)) return {};
    if (group.find_first_not_of("0123456789") != group.npos) return {};
    digits += group;
    at = end;
  }
  return digits;
}

}  // namespace

std::optional<AmountText> AmountText::parse(std::string_view text) {
  if (text.size() > kLongestAmount) return std::nullopt;
  AmountText amount;
  trim(text);
  if (text.starts_with('(') && text.ends_with(')') && text.size() > 1) {
    text = text.substr(1, text.size() - 2);
    amount.sign_ = AmountSign::Brackets;
    trim(text);
  }
  const bool isSigned = amount.sign_ != AmountSign::None || amount.takeSign(text);
  if (!amount.takeCurrency(text)) return std::nullopt;
  if (!isSigned) amount.takeSign(text);
  const bool isAmount = amount.takeDigits(text) &&
                        (amount.fits(DecimalMark::Point) || amount.fits(DecimalMark::Comma));
  return isAmount ? std::optional(std::move(amount)) : std::nullopt;
}

/// Takes one sign off; a second one stays and spoils the number.
bool AmountText::takeSign(std::string_view& text) {
  if (takePrefix(text, "-") || takePrefix(text, kMinus))
    sign_ = AmountSign::Minus;
  else if (takeSuffix(text, "-") || takeSuffix(text, kMinus))
    sign_ = AmountSign::TrailingMinus;
  else if (takePrefix(text, "+") || takeSuffix(text, "+"))
    sign_ = AmountSign::Plus;
  trim(text);
  return sign_ != AmountSign::None;
}

/// Takes a currency off either end; false for other words.
bool AmountText::takeCurrency(std::string_view& text) {
  const auto* const first = std::find_if(
      text.begin(), text.end(), [](char c) { return isOfNumber(c) || c == '-' || c == '+'; });
  std::string_view before = text.substr(0, static_cast<std::size_t>(first - text.begin()));
  if (before.ends_with(kMinus)) before.remove_suffix(kMinus.size());
  text.remove_prefix(before.size());
  const std::size_t last = text.find_last_of("0123456789.,-+");
  std::string_view behind = last == text.npos ? std::string_view() : text.substr(last + 1);
  text.remove_suffix(behind.size());
  if (!before.empty() && !behind.empty()) return false;
  std::string_view currency = before.empty() ? behind : before;
  const bool hasBlanks = trim(currency);
  trim(text);
  if (currency.empty()) return true;
  hasCurrency_ = true;
  hasTightLetters_ = !hasBlanks && std::any_of(currency.begin(), currency.end(),
                                               [](char c) { return isLetter(c); });
  return isCurrency(currency);
}

/// Takes what is left; false where that is more than digits, marks and gaps.
bool AmountText::takeDigits(std::string_view text) {
  while (!text.empty()) {
    if (isOfNumber(text.front())) {
      digits_ += text.front();
      text.remove_prefix(1);
    } else if (std::any_of(kGaps.begin(), kGaps.end(),
                           [&text](std::string_view gap) { return takePrefix(text, gap); })) {
      digits_ += kGap;
    } else {
      return false;
    }
  }
  return digits_.find_first_of("0123456789") != digits_.npos;
}

std::optional<std::string> AmountText::plain(DecimalMark mark) const {
  const char decimal = mark == DecimalMark::Point ? '.' : ',';
  const std::string_view number = digits_;
  const std::size_t point = std::min(number.find(decimal), number.size());
  const std::string_view whole = number.substr(0, point);
  const std::string_view fraction = point < number.size() ? number.substr(point + 1) : "";
  std::string digits = joinedGroups(whole, decimal);
  if (digits.empty() != whole.empty()) return std::nullopt;
  if (fraction.find_first_not_of("0123456789") != fraction.npos) return std::nullopt;
  if (digits.empty()) digits += '0';
  if (!fraction.empty()) digits.append(".").append(fraction);
  return digits;
}

std::optional<NSDecimalNumber> AmountText::value(DecimalMark mark) const {
  const std::optional<std::string> digits = plain(mark);
  if (!digits) return std::nullopt;
  std::string number = isNegative() ? "-" : "";
  return readDecimal(number += *digits);
}

}  // namespace orlftool
