#include "interchange/number_column.h"

#include <ORLFoundation/decimal/ORLFDecimalAmount.h>
#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::isDigit;
using internal::base::isUpperLetter;

constexpr std::size_t kLongestNumber = 200;
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

void trim(std::string_view& text) {
  while (takePrefix(text, " ") || takePrefix(text, "\u00A0") || takePrefix(text, "\t")) {
  }
  while (takeSuffix(text, " ") || takeSuffix(text, "\u00A0") || takeSuffix(text, "\t")) {
  }
}

bool isOfNumber(char c) { return isDigit(c) || c == '.' || c == ','; }

/// Whether letters and signs beside a number name a currency and say nothing of its sign, as "DR"
/// would.
bool isCurrency(std::string_view text) {
  constexpr std::size_t kLetters = 3;
  constexpr std::size_t kLongest = 8;
  if (text.empty()) return true;
  if (text.size() > kLongest || text.find_first_of("()-+%/") != text.npos) return false;
  if (text.find(kMinus) != text.npos) return false;
  const bool hasSign = std::any_of(text.begin(), text.end(),
                                   [](char c) { return c == '$' || !internal::base::isASCII(c); });
  const bool isCode = text.size() == kLetters && std::all_of(text.begin(), text.end(), [](char c) {
                        return isUpperLetter(c);
                      });
  return hasSign || isCode || internal::base::equalsLower(text, "kr");
}

/// Takes one sign off; a second one stays and spoils the number.
bool takeSign(std::string_view& text, bool& isNegative) {
  bool isMinus = takePrefix(text, "-") || takePrefix(text, kMinus) || takeSuffix(text, "-") ||
                 takeSuffix(text, kMinus);
  const bool isSigned = isMinus || takePrefix(text, "+");
  isNegative = isNegative || isMinus;
  trim(text);
  return isSigned;
}

/// Takes a currency off either end; false for other words.
bool takeCurrency(std::string_view& text) {
  const auto first =
      std::find_if(text.begin(), text.end(), [](char c) { return isOfNumber(c) || c == '-'; });
  std::string_view before = text.substr(0, static_cast<std::size_t>(first - text.begin()));
  if (before.ends_with(kMinus)) before.remove_suffix(kMinus.size());
  text.remove_prefix(before.size());
  const std::size_t last = text.find_last_of("0123456789.,-");
  std::string_view behind = last == text.npos ? std::string_view() : text.substr(last + 1);
  text.remove_suffix(behind.size());
  trim(before);
  trim(behind);
  trim(text);
  return isCurrency(before) && isCurrency(behind) && (before.empty() || behind.empty());
}

struct Body {
  std::string text;  // digits, marks and gaps
  bool isNegative = false;
};

/// The number without sign and currency.
std::optional<Body> bodyOf(std::string_view text) {
  if (text.size() > kLongestNumber) return std::nullopt;
  Body body;
  trim(text);
  if (text.starts_with('(') && text.ends_with(')')) {
    text = text.substr(1, text.size() - 2);
    body.isNegative = true;
    trim(text);
  }
  bool isSigned = body.isNegative || takeSign(text, body.isNegative);
  if (!takeCurrency(text)) return std::nullopt;
  if (!isSigned) takeSign(text, body.isNegative);
  while (!text.empty()) {
    if (isOfNumber(text.front())) {
      body.text += text.front();
      text.remove_prefix(1);
    } else if (std::any_of(kGaps.begin(), kGaps.end(),
                           [&text](std::string_view gap) { return takePrefix(text, gap); })) {
      body.text += kGap;
    } else {
      return std::nullopt;
    }
  }
  return body;
}

std::string_view takeDigits(std::string_view& text) {
  const std::string_view digits =
      text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
  text.remove_prefix(digits.size());
  return digits;
}

/// Whether a text is "1/2", "-50 1/2" or "$7/8": the reader of typed amounts passes over brackets
/// and other signs, drops improper fractions behind a number and takes a missing divisor for 1.
bool isFraction(std::string_view text) {
  constexpr std::size_t kMostDigits = 9;
  trim(text);
  if (!takePrefix(text, "-")) takePrefix(text, "+");
  takePrefix(text, "$");
  std::string_view over = takeDigits(text);
  const bool hasWhole = takePrefix(text, " ");
  if (hasWhole && over.empty()) return false;
  if (hasWhole) over = takeDigits(text);
  if (!takePrefix(text, "/") || over.empty() || over.size() > kMostDigits) return false;
  const std::string_view under = takeDigits(text);
  if (!text.empty() || under.empty() || under.size() > kMostDigits) return false;
  const int divisor = std::stoi(std::string(under));
  return divisor > 1 && (!hasWhole || std::stoi(std::string(over)) < divisor);
}

/// The digits of groups that one mark parts, "" for other text.
std::string joinedGroups(std::string_view whole, char decimal) {
  const std::size_t firstMark = whole.find_first_not_of("0123456789");
  if (firstMark == whole.npos) return std::string(whole);
  const char mark = whole[firstMark];
  std::string digits(whole.substr(0, firstMark));
  if (mark == decimal || digits.empty() || digits.size() > kGroup) return {};
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

enum class Evidence : std::uint8_t { None, Point, Comma, Either };

Evidence opposite(char grouping) { return grouping == '.' ? Evidence::Comma : Evidence::Point; }
Evidence itself(char decimal) { return decimal == '.' ? Evidence::Point : Evidence::Comma; }

Evidence evidenceOf(std::string_view text) {
  const std::optional<Body> body = bodyOf(text);
  if (!body) return Evidence::None;
  const std::string& number = body->text;
  const std::size_t last = number.find_last_of(".,");
  if (last == number.npos) return Evidence::None;
  const char mark = number[last];
  const std::size_t first = number.find_first_of(".,");
  if (number[first] != mark) return itself(mark);
  if (first != last) return opposite(mark);
  const bool isGroupLike = number.size() - last - 1 == kGroup && first >= 1 && first <= kGroup &&
                           number.front() != '0' && number.find(kGap) == number.npos;
  return isGroupLike ? Evidence::Either : itself(mark);
}

}  // namespace

std::optional<NSDecimalNumber> readColumnNumber(std::string_view text, DecimalMark mark) {
  const char decimal = mark == DecimalMark::Point ? '.' : ',';
  if (text.find('/') != text.npos)
    return text.size() <= kLongestNumber && isFraction(text)
               ? orlfDecimalNumberWithFormattedString(text)
               : std::nullopt;
  const std::optional<Body> body = bodyOf(text);
  if (!body || body->text.find_first_of("0123456789") == std::string::npos) return std::nullopt;
  const std::string_view number = body->text;
  const std::size_t point = std::min(number.find(decimal), number.size());
  const std::string_view whole = number.substr(0, point);
  const std::string_view fraction = point < number.size() ? number.substr(point + 1) : "";
  const std::string digits = joinedGroups(whole, decimal);
  if (digits.empty() != whole.empty()) return std::nullopt;
  if (fraction.find_first_not_of("0123456789") != fraction.npos) return std::nullopt;
  std::string plain = body->isNegative ? "-" : "";
  plain.append(digits.empty() ? "0" : digits);
  if (!fraction.empty()) plain.append(".").append(fraction);
  return readDecimal(plain);
}

void DecimalMarkJudge::note(Witness& witness, std::string_view text, std::uint64_t line) {
  if (witness.line == 0) witness = {std::string(text), line};
}

void DecimalMarkJudge::add(std::string_view text, std::uint64_t line) {
  switch (evidenceOf(text)) {
    case Evidence::None:
      return;
    case Evidence::Point:
      return note(point_, text, line);
    case Evidence::Comma:
      return note(comma_, text, line);
    case Evidence::Either:
      return note(either_, text, line);
  }
}

DecimalMarkJudge::Finding DecimalMarkJudge::finding(const std::string& name) const {
  const auto place = [](const Witness& witness) {
    return "line " + std::to_string(witness.line) + ", " + quotedForMessage(witness.text);
  };
  if (point_.line != 0 && comma_.line != 0)
    throw JobFailure(name + ": amounts have a point as the decimal mark (" + place(point_) +
                     ") and a comma (" + place(comma_) + "): --decimal tells which holds");
  if (point_.line != 0) return {DecimalMark::Point, place(point_)};
  if (comma_.line != 0) return {DecimalMark::Comma, place(comma_)};
  if (either_.line == 0) return {};
  throw JobFailure(name + ": nothing tells whether " + place(either_) +
                   ", has a decimal mark or groups of three: --decimal point or comma does");
}

}  // namespace orlftool
