
#include <ORLFoundation/platform/predicate/internal/PredicateLexer.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/NumberText.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace ORLFoundation::internal::predicate {
namespace {

using Kind = PredicateToken::Kind;

constexpr std::string_view kSpace = " \t\r\n\v\f";
constexpr std::ptrdiff_t kMostKeys = 100;

using base::endOfDigits;
using base::isDigit;

bool beginsKey(char c) { return base::isLetter(c) || c == '_' || c == '@' || !base::isASCII(c); }

bool isInKey(char c) { return beginsKey(c) || isDigit(c); }

/// The end of the keys, with points between them, that begin at a place.
std::size_t endOfKeys(std::string_view text, std::size_t at) {
  while (at < text.size() && beginsKey(text[at])) {
    while (at < text.size() && isInKey(text[at])) ++at;
    if (at + 1 >= text.size() || text[at] != '.' || !beginsKey(text[at + 1])) break;
    ++at;
  }
  return at;
}

}  // namespace

void PredicateLexer::skipSpace() noexcept {
  at_ = std::min(format_.find_first_not_of(kSpace, at_), format_.size());
}

PredicateToken PredicateLexer::next() {
  skipSpace();
  if (at_ == format_.size()) return {};
  const char first = format_[at_];
  if (beginsKey(first) || first == '#') return word();
  if (isDigit(first) || (first == '.' && at_ + 1 < format_.size() && isDigit(format_[at_ + 1])))
    return number();
  if (first == '"' || first == '\'') return quotedText();
  return first == '%' ? argument() : sign();
}

PredicateToken PredicateLexer::word() {
  const bool isKeyPath = format_[at_] == '#';
  const std::size_t begin = at_ + (isKeyPath ? 1 : 0);
  at_ = endOfKeys(format_, begin);
  const std::string_view text = format_.substr(begin, at_ - begin);
  if (text.empty() || std::count(text.begin(), text.end(), '.') >= kMostKeys)
    throw PredicateFault();
  return {isKeyPath ? Kind::KeyPath : Kind::Word, std::string(text), {}};
}

PredicateToken PredicateLexer::number() {
  const std::size_t begin = at_;
  at_ = endOfDigits(format_, at_);
  bool isWhole = true;
  if (at_ < format_.size() && format_[at_] == '.') {
    at_ = endOfDigits(format_, at_ + 1);
    isWhole = false;
  }
  if (at_ < format_.size() && (format_[at_] == 'e' || format_[at_] == 'E')) {
    ++at_;
    if (at_ < format_.size() && (format_[at_] == '+' || format_[at_] == '-')) ++at_;
    const std::size_t end = endOfDigits(format_, at_);
    if (end == at_) throw PredicateFault();
    at_ = end;
    isWhole = false;
  }
  if (at_ < format_.size() && isInKey(format_[at_])) throw PredicateFault();
  const std::string_view text = format_.substr(begin, at_ - begin);
  NSInteger whole = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), whole);
  if (isWhole && read.ec == std::errc()) return {Kind::Value, std::string(text), whole};
  return {Kind::Value, std::string(text), doubleValue(text)};
}

/// The character after a backslash.
char PredicateLexer::escapedCharacter() {
  constexpr std::string_view kNames = "abfnrtv";
  constexpr std::string_view kCharacters = "\a\b\f\n\r\t\v";
  if (at_ == format_.size()) throw PredicateFault();
  const char c = format_[at_++];
  const std::size_t place = kNames.find(c);
  return place == kNames.npos ? c : kCharacters[place];
}

PredicateToken PredicateLexer::quotedText() {
  const char quote = format_[at_++];
  std::string text;
  while (at_ < format_.size() && format_[at_] != quote) {
    const char c = format_[at_++];
    text += c == '\\' ? escapedCharacter() : c;
  }
  if (at_ == format_.size()) throw PredicateFault();
  ++at_;
  return {Kind::Value, {}, std::move(text)};
}

PredicateToken PredicateLexer::argument() {
  constexpr std::string_view kConversions[] = {"@",  "d",  "i",  "u",   "f",
                                               "ld", "lu", "lf", "lld", "llu"};
  const std::size_t begin = at_ + 1;
  if (begin < format_.size() && format_[begin] == 'K') {
    at_ = begin + 1;
    return {Kind::KeyArgument, {}, {}};
  }
  for (const std::string_view conversion : kConversions) {
    const std::size_t end = begin + conversion.size();
    if (format_.substr(begin, conversion.size()) != conversion) continue;
    if (end < format_.size() && isInKey(format_[end]) && conversion != "@") continue;
    at_ = end;
    return {Kind::ValueArgument, {}, {}};
  }
  throw PredicateFault();
}

PredicateToken PredicateLexer::sign() {
  constexpr std::string_view kSigns[] = {"==", "=<", "=>", "=", "!=", "!",  "<>",
                                         "<=", "<",  ">=", ">", "&&", "||", "(",
                                         ")",  "{",  "}",  "[", "]",  ",",  "-"};
  const std::string_view rest = format_.substr(at_);
  const auto* const found =
      std::find_if(std::begin(kSigns), std::end(kSigns),
                   [rest](std::string_view known) { return rest.starts_with(known); });
  if (found == std::end(kSigns)) throw PredicateFault();
  at_ += found->size();
  return {Kind::Sign, std::string(*found), {}};
}

}  // namespace ORLFoundation::internal::predicate
