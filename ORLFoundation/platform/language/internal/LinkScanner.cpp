
#include <ORLFoundation/platform/language/internal/LinkScanner.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/language/internal/LinkCharacters.h>

#include <algorithm>
#include <iterator>

namespace ORLFoundation::internal::language {
namespace {

constexpr std::size_t kLongestLocalPart = 64;
constexpr std::string_view kWebSchemes[] = {"http", "https", "ftp", "file"};
constexpr std::string_view kWorldWideWeb = "www.";

std::size_t endOfLocalPart(std::string_view text, std::size_t from) {
  while (const std::size_t length = lengthOfLocalCharacter(text, from)) from += length;
  return from;
}

std::size_t endOfAddress(std::string_view text, std::size_t from) {
  while (const std::size_t length = lengthOfAddressCharacter(text, from)) from += length;
  return from;
}

bool isWebScheme(std::string_view word) {
  return std::any_of(std::begin(kWebSchemes), std::end(kWebSchemes),
                     [word](std::string_view scheme) { return base::equalsLower(word, scheme); });
}

/// The end without the marks that end a sentence, and without closing brackets that were not opened
/// inside.
std::size_t withoutClosingMarks(std::string_view text, std::size_t begin, std::size_t end) {
  constexpr std::string_view kMarks = ".,;:!?'*_~";
  const std::string_view link = text.substr(begin, end - begin);
  auto unopened =
      std::count(link.begin(), link.end(), ')') - std::count(link.begin(), link.end(), '(');
  for (; end > begin; --end) {
    const char last = text[end - 1];
    if (last == ')' && unopened > 0) {
      --unopened;
    } else if (last != ']' && last != '}' && kMarks.find(last) == kMarks.npos) {
      break;
    }
  }
  return end;
}

/// Where a local part begins that ends at `end`: behind points that stand side by side.
std::size_t beginOfLocalPart(std::string_view text, std::size_t begin, std::size_t end) {
  const std::string_view local = text.substr(begin, end - begin);
  if (const std::size_t points = local.rfind(".."); points != local.npos) begin += points + 2;
  if (begin < end && text[begin] == '.') ++begin;
  return begin;
}

}  // namespace

std::optional<Link> LinkScanner::next() {
  while (at_ < text_.size()) {
    const std::size_t begin = at_;
    const std::size_t end = endOfLocalPart(text_, begin);
    if (end == begin) {
      ++at_;
      continue;
    }
    at_ = end;
    if (const std::optional<Link> link = linkAt(begin, end)) {
      at_ = link->end;
      return link;
    }
  }
  return std::nullopt;
}

/// The link whose first word has these bounds.
std::optional<Link> LinkScanner::linkAt(std::size_t begin, std::size_t end) {
  const char sign = end < text_.size() ? text_[end] : ' ';
  if (sign == '@') return mailAt(begin, end);
  if (sign == ':')
    if (const std::optional<Link> link = addressAt(begin, end)) return link;
  return hostAt(begin, end);
}

std::optional<Link> LinkScanner::mailAt(std::size_t begin, std::size_t end) {
  begin = beginOfLocalPart(text_, begin, end);
  if (begin == end || end - begin > kLongestLocalPart || text_[end - 1] == '.') return std::nullopt;
  const std::size_t host = end + 1;
  const std::size_t hostEnd = endOfHost(text_, host);
  if (!hasTopLevelDomain(text_.substr(host, hostEnd - host))) return std::nullopt;
  if (hostEnd < text_.size() && text_[hostEnd] == '@') return std::nullopt;
  return Link{Link::Kind::Mail, begin, hostEnd};
}

std::optional<Link> LinkScanner::addressAt(std::size_t begin, std::size_t colon) {
  const std::string_view scheme = text_.substr(begin, colon - begin);
  if (base::equalsLower(scheme, "mailto")) {
    const std::size_t end = endOfLocalPart(text_, colon + 1);
    if (end >= text_.size() || text_[end] != '@') return std::nullopt;
    const std::optional<Link> mail = mailAt(colon + 1, end);
    if (!mail || mail->begin != colon + 1) return std::nullopt;
    return Link{Link::Kind::Address, begin, mail->end};
  }
  if (!isWebScheme(scheme) || text_.substr(colon + 1, 2) != "//") return std::nullopt;
  const std::size_t end = withoutClosingMarks(text_, colon + 3, endOfAddress(text_, colon + 3));
  if (end == colon + 3) return std::nullopt;
  return Link{Link::Kind::Address, begin, end};
}

std::optional<Link> LinkScanner::hostAt(std::size_t begin, std::size_t end) {
  while (begin < end && lengthOfLabelCharacter(text_, begin) == 0) ++begin;
  const std::size_t hostEnd = endOfHost(text_, begin);
  const std::string_view host = text_.substr(begin, hostEnd - begin);
  const bool isWeb = base::equalsLower(host.substr(0, kWorldWideWeb.size()), kWorldWideWeb);
  if (!hasTopLevelDomain(host) || (!isWeb && !hasCommonTopLevelDomain(host))) return std::nullopt;
  const char sign = hostEnd < text_.size() ? text_[hostEnd] : ' ';
  if (sign == '@') return std::nullopt;
  if (sign != '/' && sign != '?' && sign != '#' && sign != ':')
    return Link{Link::Kind::Host, begin, hostEnd};
  const std::size_t linkEnd = withoutClosingMarks(text_, hostEnd, endOfAddress(text_, hostEnd));
  return Link{Link::Kind::Host, begin, linkEnd};
}

}  // namespace ORLFoundation::internal::language
