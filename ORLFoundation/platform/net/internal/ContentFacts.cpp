#include <ORLFoundation/platform/net/internal/ContentFacts.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Trimmed.h>

#include <charconv>

namespace ORLFoundation::internal::net {
namespace {

using namespace base;

/// Cuts the text up to the sign off its front, and the sign; all of it where there is none.
std::string_view cutTo(char sign, std::string_view& text) {
  const std::size_t end = text.find(sign);
  const std::string_view piece = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return trimmed(piece);
}

std::string_view withoutQuotes(std::string_view text) {
  constexpr char kQuote = '"';
  if (text.size() < 2 || text.front() != kQuote || text.back() != kQuote) return text;
  return text.substr(1, text.size() - 2);
}

}  // namespace

std::string_view trimmed(std::string_view text) noexcept {
  constexpr std::string_view kBlanks = " \t";
  return base::trimmed(text, kBlanks);
}

std::string_view textOf(const NSHTTPHeaderFields& fields, std::string_view name) noexcept {
  const auto found = fields.find(name);
  return found == fields.end() ? std::string_view() : found->second;
}

std::optional<std::string> fieldOf(const NSHTTPHeaderFields& fields, std::string_view name) {
  const auto found = fields.find(name);
  return found == fields.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> mediaTypeIn(std::string_view contentType) {
  const std::string_view type = cutTo(';', contentType);
  return type.empty() ? std::nullopt : std::optional(lowerASCII(type));
}

std::optional<std::string> charsetIn(std::string_view contentType) {
  cutTo(';', contentType);
  while (!contentType.empty()) {
    std::string_view parameter = cutTo(';', contentType);
    const std::string_view name = cutTo('=', parameter);
    const std::string_view value = withoutQuotes(trimmed(parameter));
    if (equalsLower(name, "charset") && !value.empty()) return std::string(value);
  }
  return std::nullopt;
}

std::optional<std::string> mediaTypeOf(const NSHTTPHeaderFields& fields) {
  return mediaTypeIn(textOf(fields, "Content-Type"));
}

std::optional<std::string> charsetOf(const NSHTTPHeaderFields& fields) {
  return charsetIn(textOf(fields, "Content-Type"));
}

bool isLengthClear(const NSHTTPHeaderFields& fields) noexcept {
  const auto found = fields.find("Content-Length");
  if (found == fields.end() || fields.contains("Transfer-Encoding")) return true;
  std::string_view text = found->second;
  const std::string_view first = cutTo(',', text);
  std::int64_t length = 0;
  if (first.empty() || !isDigit(first.front())) return false;
  const auto [end, error] = std::from_chars(first.data(), first.data() + first.size(), length);
  if (error != std::errc() || end != first.data() + first.size()) return false;
  while (!text.empty())
    if (cutTo(',', text) != first) return false;
  return true;
}

std::int64_t lengthOf(const NSHTTPHeaderFields& fields) {
  constexpr std::int64_t kUnknown = -1;
  const std::string_view encoding = trimmed(textOf(fields, "Content-Encoding"));
  if (!encoding.empty() && !equalsLower(encoding, "identity")) return kUnknown;
  const std::string_view text = trimmed(textOf(fields, "Content-Length"));
  if (text.empty() || !isDigit(text.front())) return kUnknown;
  std::int64_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  return error == std::errc() && end == text.data() + text.size() ? length : kUnknown;
}

}  // namespace ORLFoundation::internal::net
