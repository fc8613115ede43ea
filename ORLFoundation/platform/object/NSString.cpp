

#include <ORLFoundation/platform/object/NSString.h>

#include <algorithm>
#include <cstdio>

namespace ORLFoundation {
namespace {

constexpr int kWidest = 1000;
constexpr std::string_view kFlags = "-+ #0";
constexpr std::string_view kLengths = "hlqLzjt";
constexpr std::string_view kSigned = "di";
constexpr std::string_view kUnsigned = "uxXo";
constexpr std::string_view kFloating = "fFeEgGaA";

bool contains(std::string_view set, char c) { return set.find(c) != set.npos; }

/// One conversion of a format, from its percent sign on.
struct Conversion {
  std::string flags;
  int width = 0;
  int precision = -1;
  bool isLong = false;
  char kind = 0;  // 0 when the text is no conversion
  std::size_t length = 0;
};

class ConversionReader {
 public:
  explicit ConversionReader(std::string_view text) : text_(text) {}

  Conversion read() {
    Conversion conversion;
    while (contains(kFlags, peek()) && peek()) {
      if (!contains(conversion.flags, peek())) conversion.flags += peek();
      ++at_;
    }
    conversion.width = readNumber();
    if (peek() == '.') {
      ++at_;
      conversion.precision = readNumber();
    }
    for (; contains(kLengths, peek()) && peek(); ++at_)
      conversion.isLong = conversion.isLong || peek() != 'h';
    const char kind = peek();
    if (kind && (contains("@s%", kind) || contains(kSigned, kind) || contains(kUnsigned, kind) ||
                 contains(kFloating, kind))) {
      conversion.kind = kind;
      conversion.length = at_ + 1;
    }
    return conversion;
  }

 private:
  [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  int readNumber() {
    int number = 0;
    for (; peek() >= '0' && peek() <= '9'; ++at_)
      number = std::min(number * 10 + (peek() - '0'), kWidest);
    return number;
  }

  std::string_view text_;
  std::size_t at_ = 1;
};

/// The text at its width. Cut to the precision, in bytes but never inside a character.
std::string placed(std::string text, const Conversion& conversion) {
  if (conversion.precision >= 0 && static_cast<std::size_t>(conversion.precision) < text.size()) {
    auto end = static_cast<std::size_t>(conversion.precision);
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) --end;
    text.resize(end);
  }
  const auto width = static_cast<std::size_t>(conversion.width);
  if (text.size() >= width) return text;
  const std::string space(width - text.size(), ' ');
  return contains(conversion.flags, '-') ? text + space : space + text;
}

/// Prints a C number through the C library, whose flags and precision these are.
template <class Number>
std::string printed(const Conversion& conversion, const char* length, Number number) {
  std::string format = "%" + conversion.flags + "*";
  if (conversion.precision >= 0) format += ".*";
  format += length;
  format += conversion.kind;
  const auto write = [&](char* out, std::size_t size) {
    return conversion.precision >= 0
               ? std::snprintf(out, size, format.c_str(), conversion.width, conversion.precision,
                               number)
               : std::snprintf(out, size, format.c_str(), conversion.width, number);
  };
  std::string out(static_cast<std::size_t>(std::max(0, write(nullptr, 0))), '\0');
  write(out.data(), out.size() + 1);
  return out;
}

bool isWhole(const NSNumber& number) {
  return number.kind() != NSNumber::Kind::Double && number.kind() != NSNumber::Kind::Decimal;
}

std::string converted(const Conversion& conversion, const id& argument) {
  if (const auto* number = argument.get<NSNumber>()) {
    if (contains(kFloating, conversion.kind)) return printed(conversion, "", number->doubleValue());
    if (contains(kSigned, conversion.kind) && isWhole(*number))
      return printed(conversion, "ll", static_cast<long long>(number->integerValue()));
    if (contains(kUnsigned, conversion.kind) && isWhole(*number)) {
      NSUInteger bits = number->unsignedIntegerValue();
      if (!conversion.isLong && number->integerValue() < 0) bits &= 0xffffffffU;
      return printed(conversion, "ll", static_cast<unsigned long long>(bits));
    }
  }
  return placed(argument.description(), conversion);
}

}  // namespace

std::string stringWithFormatArguments(std::string_view format, std::span<const id> arguments) {
  std::string out;
  std::size_t next = 0;
  while (!format.empty()) {
    const std::size_t percent = std::min(format.find('%'), format.size());
    out += format.substr(0, percent);
    format.remove_prefix(percent);
    if (format.empty()) break;
    const Conversion conversion = ConversionReader(format).read();
    if (conversion.kind == 0 || conversion.kind == '%') {
      out += '%';
      format.remove_prefix(std::max<std::size_t>(conversion.length, 1));
      continue;
    }
    out += converted(conversion, next < arguments.size() ? arguments[next] : id());
    ++next;
    format.remove_prefix(conversion.length);
  }
  return out;
}

}  // namespace ORLFoundation
