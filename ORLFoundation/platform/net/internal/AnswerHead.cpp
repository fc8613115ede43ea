#include <ORLFoundation/platform/net/internal/AnswerHead.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/net/internal/ContentFacts.h>

#include <charconv>
#include <utility>

namespace ORLFoundation::internal::net {
namespace {

std::string readableTextOf(std::string_view bytes) {
  if (base::isUTF8(bytes)) return std::string(bytes);
  std::string text;
  for (const char byte : bytes)
    base::appendUTF8(text, static_cast<char32_t>(static_cast<unsigned char>(byte)));
  return text;
}

}  // namespace

bool AnswerHead::take(std::string_view line) {
  size_ += line.size();
  if (size_ > kMostBytes) return false;
  if (isWhole_) return true;
  while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.remove_suffix(1);
  const bool isFirst = std::exchange(isFirst_, line.empty());
  if (line.empty()) {
    isWhole_ = status_ >= 200;
  } else if (isFirst && line.substr(0, 5) == "HTTP/") {
    begin(line);
  } else if (line.front() == ' ' || line.front() == '\t') {
    return fold(trimmed(line));
  } else {
    return takeField(line);
  }
  return true;
}

void AnswerHead::begin(std::string_view statusLine) {
  fields_.clear();
  last_ = nullptr;
  kind_ = Kind::Other;
  isLocationClear_ = true;
  status_ = 0;
  const std::size_t blank = statusLine.find(' ');
  version_ = readableTextOf(statusLine.substr(0, blank));
  if (blank == std::string_view::npos) return;
  const std::string_view code = trimmed(statusLine.substr(blank));
  std::from_chars(code.data(), code.data() + code.size(), status_);
}

AnswerHead::Kind AnswerHead::kindOf(std::string_view name) noexcept {
  if (base::equalsLower(name, "content-length") || base::equalsLower(name, "transfer-encoding"))
    return Kind::Framing;
  return base::equalsLower(name, "location") ? Kind::Location : Kind::Other;
}

bool AnswerHead::takeField(std::string_view line) {
  const std::size_t colon = line.find(':');
  const std::string_view written = line.substr(0, colon), name = trimmed(written);
  last_ = nullptr;
  kind_ = Kind::Other;
  if (colon == std::string_view::npos || name.empty()) return true;
  kind_ = kindOf(name);
  if (kind_ == Kind::Framing && name.size() != written.size()) return false;
  std::string value = readableTextOf(trimmed(line.substr(colon + 1)));
  const auto [field, isNew] = fields_.try_emplace(readableTextOf(name), value);
  if (!isNew && kind_ == Kind::Location) {
    isLocationClear_ = isLocationClear_ && field->second == value;
    return true;
  }
  if (!isNew) field->second.append(", ").append(value);
  last_ = &field->second;
  return true;
}

bool AnswerHead::fold(std::string_view more) {
  if (kind_ == Kind::Location) isLocationClear_ = false;
  if (last_ != nullptr) last_->append(" ").append(readableTextOf(more));
  return kind_ != Kind::Framing;
}

}  // namespace ORLFoundation::internal::net
