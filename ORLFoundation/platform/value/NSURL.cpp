
#include <ORLFoundation/platform/value/NSURL.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/value/internal/PercentEscapes.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::string_view kRefused = " \"<>\\^`{|}";
constexpr std::string_view kPathSigns = "/-._~!$&'()*+,;=:@";

using internal::base::isDigit;
using internal::base::isLetter;
using internal::base::isLetterOrDigit;

bool isAddressText(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte <= 0x20 || byte >= 0x7f || kRefused.find(text[i]) != kRefused.npos) return false;
    if (text[i] == '%' && !internal::value::isPercentEscapeAt(text, i)) return false;
  }
  return !text.empty();
}

std::string escapedPath(std::string_view path) {
  std::string out;
  for (const char c : path) {
    if (isLetterOrDigit(c) || kPathSigns.find(c) != kPathSigns.npos) {
      out += c;
    } else {
      out += '%';
      internal::base::appendHexByte(out, static_cast<std::uint8_t>(c),
                                    internal::base::kUpperHexDigits);
    }
  }
  return out;
}

/// The length of a scheme at the text's start, without its colon; 0 when there is none.
std::size_t schemeLength(std::string_view text) {
  if (!isLetter(text.front())) return 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] == ':') return i;
    if (!isLetterOrDigit(text[i]) && text[i] != '+' && text[i] != '-' && text[i] != '.') return 0;
  }
  return 0;
}

}  // namespace

std::optional<NSURL> NSURL::URLWithString(std::string_view text) {
  if (!isAddressText(text)) return std::nullopt;
  NSURL url{std::string(text)};
  if (!url.cutParts()) return std::nullopt;
  return url;
}

NSURL NSURL::fileURLWithPath(std::string_view path) {
  NSURL url("file://" + std::string(path.starts_with('/') ? "" : "/") + escapedPath(path));
  static_cast<void>(url.cutParts());
  return url;
}

bool NSURL::cutParts() {
  const std::string_view all = text_;
  std::size_t begin = 0;
  if (const std::size_t length = schemeLength(all); length != 0) {
    scheme_ = {0, length, true};
    begin = length + 1;
  }
  std::size_t end = all.size();
  if (const auto mark = all.find('#', begin); mark != all.npos) {
    fragment_ = {mark + 1, end - mark - 1, true};
    end = mark;
  }
  if (const auto mark = all.substr(0, end).find('?', begin); mark != all.npos) {
    query_ = {mark + 1, end - mark - 1, true};
    end = mark;
  }
  if (all.substr(begin, end - begin).starts_with("//")) {
    begin += 2;
    const std::size_t slash = std::min(all.find('/', begin), end);
    if (!cutAuthority(begin, slash)) return false;
    begin = slash;
  }
  path_ = {begin, end - begin, true};
  return true;
}

bool NSURL::cutAuthority(std::size_t begin, std::size_t end) {
  const std::string_view all = std::string_view(text_).substr(0, end);
  if (const auto at = all.rfind('@'); at != all.npos && at >= begin) begin = at + 1;
  std::size_t hostEnd = end;
  const auto bracket = all.rfind(']');
  const std::size_t from = bracket != all.npos && bracket >= begin ? bracket : begin;
  if (const auto colon = all.find(':', from); colon != all.npos) {
    port_ = {colon + 1, end - colon - 1, colon + 1 < end};
    hostEnd = colon;
    if (!std::all_of(all.begin() + static_cast<std::ptrdiff_t>(colon) + 1, all.end(),
                     isDigit<char>))
      return false;
  }
  host_ = {begin, hostEnd - begin, hostEnd > begin};
  return true;
}

std::string_view NSURL::text(Part part) const noexcept {
  return std::string_view(text_).substr(part.begin, part.length);
}

std::optional<std::string> NSURL::optionalText(Part part) const {
  if (!part.present) return std::nullopt;
  return std::string(text(part));
}

std::optional<std::string> NSURL::scheme() const { return optionalText(scheme_); }

std::optional<std::string> NSURL::host() const {
  if (!host_.present) return std::nullopt;
  std::string_view name = text(host_);
  if (name.starts_with('[') && name.ends_with(']')) name = name.substr(1, name.size() - 2);
  return internal::value::withoutPercentEscapes(name);
}

std::optional<NSInteger> NSURL::port() const {
  NSInteger number = 0;
  const std::string_view digits = text(port_);
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (!port_.present || result.ec != std::errc()) return std::nullopt;
  return number;
}

std::string NSURL::path() const {
  std::string path = internal::value::withoutPercentEscapes(text(path_));
  if (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

std::string_view NSURL::percentEncodedPath() const noexcept { return text(path_); }

std::optional<std::string> NSURL::query() const { return optionalText(query_); }

std::optional<std::string> NSURL::fragment() const { return optionalText(fragment_); }

std::string NSURL::lastPathComponent() const {
  std::string whole = path();
  if (whole == "/") return whole;
  return whole.substr(whole.rfind('/') + 1);
}

std::string NSURL::pathExtension() const {
  const std::string last = lastPathComponent();
  const std::size_t point = last.rfind('.');
  return point == last.npos || point == 0 ? std::string() : last.substr(point + 1);
}

bool NSURL::isFileURL() const { return internal::base::equalsLower(text(scheme_), "file"); }

}  // namespace ORLFoundation
