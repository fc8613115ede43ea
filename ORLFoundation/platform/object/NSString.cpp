
#include <ORLFoundation/platform/object/NSString.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/object/internal/DescriptionText.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>

namespace ORLFoundation {
namespace {

constexpr int kWidest = 1000;
constexpr std::string_view kFlags = "-+ #0";
constexpr std::string_view kLengths = "hlqLzjt";
constexpr std::string_view kTexts = "@sS";
constexpr std::string_view kSigned = "di";
constexpr std::string_view kUnsigned = "uxXo";
constexpr std::string_view kFloating = "fFeEgGaA";
constexpr std::string_view kCharacters = "cC";
constexpr char kPointer = 'p';

bool contains(std::string_view set, char c) { return c != '\0' && set.find(c) != set.npos; }

bool isConversion(char kind) {
  return kind == '%' || kind == kPointer || contains(kTexts, kind) || contains(kSigned, kind) ||
         contains(kUnsigned, kind) || contains(kFloating, kind) || contains(kCharacters, kind);
}

/// A number that stands in the format, or the place of the argument that it is to come from.
struct Measure {
  std::optional<int> number = {};
  bool isArgument = false;
  std::size_t place = 0;  // from 1; 0 is the next argument
};

/// One conversion of a format, from its percent sign on.
struct Conversion {
  std::string flags;
  Measure width;
  Measure precision;
  std::size_t place = 0;  // of the argument, from 1; 0 is the next one
  bool isLong = false;
  char kind = 0;  // 0 when the text is no conversion
  std::size_t length = 0;
};

class ConversionReader {
 public:
  explicit ConversionReader(std::string_view text) : text_(text) {}

  Conversion read() {
    Conversion conversion;
    conversion.place = readPlace();
    for (; contains(kFlags, peek()); ++at_)
      if (!contains(conversion.flags, peek())) conversion.flags += peek();
    conversion.width = readMeasure();
    if (peek() == '.') {
      ++at_;
      conversion.precision = readMeasure();
      if (!conversion.precision.number) conversion.precision.number = 0;
    }
    for (; contains(kLengths, peek()); ++at_)
      conversion.isLong = conversion.isLong || peek() != 'h';
    if (isConversion(peek())) {
      conversion.kind = peek();
      conversion.length = at_ + 1;
    }
    return conversion;
  }

 private:
  [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  [[nodiscard]] bool isDigit() const { return internal::base::isDigit(peek()); }

  std::optional<int> readNumber() {
    if (!isDigit()) return std::nullopt;
    int number = 0;
    for (; isDigit(); ++at_) number = std::min(number * 10 + (peek() - '0'), kWidest);
    return number;
  }

  /// Takes "2$"; 0, and nothing is taken, when that is not what stands here.
  std::size_t readPlace() {
    const std::size_t before = at_;
    const std::optional<int> place = readNumber();
    if (place.value_or(0) > 0 && peek() == '$') {
      ++at_;
      return static_cast<std::size_t>(*place);
    }
    at_ = before;
    return 0;
  }

  Measure readMeasure() {
    if (peek() != '*') return {.number = readNumber()};
    ++at_;
    return {.isArgument = true, .place = readPlace()};
  }

  std::string_view text_;
  std::size_t at_ = 1;
};

/// The arguments of a format, taken one after the other or by their place.
class Arguments {
 public:
  explicit Arguments(std::span<const id> arguments) : arguments_(arguments) {}

  id take(std::size_t place) {
    const std::size_t index = place == 0 ? next_++ : place - 1;
    return index < arguments_.size() ? arguments_[index] : id();
  }

 private:
  std::span<const id> arguments_;
  std::size_t next_ = 0;
};

/// How a conversion is to be printed, numbers from arguments included.
struct Form {
  std::string flags;
  int width = 0;
  int precision = -1;  // none
  char kind = 0;
  bool isLong = false;
};

int measured(const Measure& measure, Arguments& arguments, int absent) {
  if (!measure.isArgument) return measure.number.value_or(absent);
  const id argument = arguments.take(measure.place);
  const NSInteger number = argument.as<NSInteger>().value_or(0);
  return static_cast<int>(std::clamp<NSInteger>(number, -kWidest, kWidest));
}

Form formOf(const Conversion& conversion, Arguments& arguments) {
  Form form{.flags = conversion.flags, .kind = conversion.kind, .isLong = conversion.isLong};
  form.width = measured(conversion.width, arguments, 0);
  if (form.width < 0) {
    form.width = -form.width;
    if (!contains(form.flags, '-')) form.flags += '-';
  }
  form.precision = std::max(measured(conversion.precision, arguments, -1), -1);
  return form;
}

/// The text at its width. Cut to the precision, in bytes but never inside a character.
std::string placed(std::string text, const Form& form) {
  if (form.precision >= 0 && static_cast<std::size_t>(form.precision) < text.size()) {
    auto end = static_cast<std::size_t>(form.precision);
    while (end > 0 && internal::base::continuesUTF8Character(text[end])) --end;
    text.resize(end);
  }
  const auto width = static_cast<std::size_t>(form.width);
  if (text.size() >= width) return text;
  const std::string space(width - text.size(), ' ');
  return contains(form.flags, '-') ? text + space : space + text;
}

/// Prints a C number through the C library, whose flags and precision these are.
template <class Number>
std::string printed(const Form& form, const char* length, Number number) {
  std::string format = "%" + form.flags + "*";
  if (form.precision >= 0) format += ".*";
  format += length;
  format += form.kind;
  const auto write = [&](char* out, std::size_t size) {
    return form.precision >= 0
               ? std::snprintf(out, size, format.c_str(), form.width, form.precision, number)
               : std::snprintf(out, size, format.c_str(), form.width, number);
  };
  std::string out(static_cast<std::size_t>(std::max(0, write(nullptr, 0))), '\0');
  write(out.data(), out.size() + 1);
  return out;
}

bool isWhole(const NSNumber& number) {
  return number.kind() != NSNumber::Kind::Double && number.kind() != NSNumber::Kind::Decimal;
}

std::string address(NSUInteger bits, const Form& form) {
  char text[20];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(bits));
  return placed(text, {.flags = form.flags, .width = form.width});
}

std::string convertedNumber(const Form& form, const NSNumber& number) {
  if (contains(kFloating, form.kind)) return printed(form, "", number.doubleValue());
  if (!isWhole(number) || contains(kTexts, form.kind)) return placed(number.description(), form);
  if (contains(kSigned, form.kind))
    return printed(form, "ll", static_cast<long long>(number.integerValue()));
  NSUInteger bits = number.unsignedIntegerValue();
  if (form.kind == kPointer) return address(bits, form);
  if (form.kind == 'c') return placed(internal::object::characterText(bits & 0xffU), form);
  if (form.kind == 'C') return placed(internal::object::characterText(bits), form);
  if (!form.isLong && number.integerValue() < 0) bits &= 0xffffffffU;
  return printed(form, "ll", static_cast<unsigned long long>(bits));
}

std::string converted(const Form& form, const id& argument) {
  if (const auto* number = argument.get<NSNumber>()) return convertedNumber(form, *number);
  if (form.kind == kPointer && (argument.isNil() || argument.object()))
    return address(reinterpret_cast<std::uintptr_t>(argument.object().get()), form);
  return placed(argument.description(), form);
}

}  // namespace

std::string stringWithFormatArguments(std::string_view format, std::span<const id> arguments) {
  std::string out;
  Arguments given(arguments);
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
    const Form form = formOf(conversion, given);
    out += converted(form, given.take(conversion.place));
    format.remove_prefix(conversion.length);
  }
  return out;
}

}  // namespace ORLFoundation
