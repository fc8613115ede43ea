
#include <ORLFoundation/platform/plist/internal/XMLPropertyListScalars.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/base/NumberText.h>
#include <ORLFoundation/platform/base/Trimmed.h>
#include <ORLFoundation/platform/plist/PropertyListTable.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <system_error>

namespace ORLFoundation::internal::plist {
namespace {

namespace civil = base::civil;

constexpr std::string_view kBlanks = " \t\n\r";
constexpr int kMostYear = 32767;
// From 1970-01-01 to 2001-01-01.
constexpr auto kDaysToReference =
    static_cast<std::int32_t>(NSTimeIntervalSince1970 / civil::kSecondsPerDay);

// Digits of an exact count at the start of a date's text, and the sign after them.
int takeDigits(std::string_view& text, std::size_t digits, char mark) {
  int value = 0;
  const bool fits = text.size() > digits && text[digits] == mark && digits <= 5;
  if (!fits) throw PropertyListFault("A date is written wrongly.");
  for (std::size_t at = 0; at < digits; ++at) {
    if (!base::isDigit(text[at])) throw PropertyListFault("A date is written wrongly.");
    value = 10 * value + (text[at] - '0');
  }
  text.remove_prefix(digits + 1);
  return value;
}

}  // namespace

std::pair<std::uint64_t, bool> integerFromXML(std::string_view text) {
  text = base::trimmed(text, kBlanks);
  const bool isNegative = base::takeSign(text);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  std::uint64_t magnitude = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), magnitude, isHexadecimal ? 16 : 10);
  constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
  if (error != std::errc() || end != text.data() + text.size() ||
      (isNegative && magnitude > kMostNegative))
    throw PropertyListFault("An integer is written wrongly or out of range.");
  return {isNegative ? std::uint64_t{0} - magnitude : magnitude, isNegative && magnitude != 0};
}

double realFromXML(std::string_view text) {
  text = base::trimmed(text, kBlanks);
  const bool isNegative = base::takeSign(text);
  double value = 0;
  if (base::equalsLower(text, "nan")) {
    value = std::numeric_limits<double>::quiet_NaN();
  } else if (base::equalsLower(text, "inf") || base::equalsLower(text, "infinity")) {
    value = std::numeric_limits<double>::infinity();
  } else {
    const bool startsRight = !text.empty() && (text[0] == '.' || base::isDigit(text[0]));
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!startsRight || error != std::errc() || end != text.data() + text.size())
      throw PropertyListFault("A real is written wrongly or out of range.");
  }
  return isNegative ? -value : value;
}

double dateFromXML(std::string_view text) {
  text = base::trimmed(text, kBlanks);
  const bool isNegative = text.starts_with('-');
  if (isNegative) text.remove_prefix(1);
  const int digitsOfYear =
      takeDigits(text, std::max<std::size_t>(std::min(text.find('-'), text.size()), 4), '-');
  const int month = takeDigits(text, 2, '-');
  const int day = takeDigits(text, 2, 'T');
  const std::int64_t hour = takeDigits(text, 2, ':');
  const std::int64_t minute = takeDigits(text, 2, ':');
  const int second = takeDigits(text, 2, 'Z');
  const int year = isNegative ? -digitsOfYear : digitsOfYear;
  const bool isDate = digitsOfYear <= kMostYear && month >= 1 && month <= 12 && day >= 1 &&
                      day <= civil::daysInMonth(year, month);
  if (!text.empty() || !isDate || hour > 23 || minute > 59 || second > 59)
    throw PropertyListFault("A date is written wrongly.");
  const std::int64_t days = civil::dayFromDate(year, month, day) - kDaysToReference;
  return static_cast<double>(days * civil::kSecondsPerDay + hour * 3600 + minute * 60 + second);
}

std::string dataFromXML(std::string_view text) {
  if (!base::isASCII(text.substr(0, text.find('='))))
    throw PropertyListFault("Data holds a character that is not ASCII.");
  return base::bytesOfLooseBase64Text(text);
}

std::string realToXML(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "+infinity" : "-infinity";
  if (value == 0) return "0.0";
  char text[64];
  const auto [end, error] =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17);
  return error == std::errc() ? std::string(text, end) : std::string();
}

std::string dateToXML(double seconds) {
  constexpr double kMostDays = kMostYear * 365.0;
  const double whole = std::floor(seconds);
  const double days = std::floor(whole / civil::kSecondsPerDay);
  if (!(std::abs(days) < kMostDays)) throw PropertyListFault("A date is out of range.");
  const civil::Date date = civil::dateFromDay(static_cast<std::int32_t>(days) + kDaysToReference);
  const int second = static_cast<int>(whole - days * civil::kSecondsPerDay);
  char text[64];
  std::snprintf(text, sizeof text, "%s%04d-%02d-%02dT%02d:%02d:%02dZ", date.year < 0 ? "-" : "",
                std::abs(date.year), date.month, date.day, second / 3600, second / 60 % 60,
                second % 60);
  return text;
}

std::string dataToXML(std::string_view bytes, std::string_view indent, std::size_t lineLength) {
  const std::size_t bytesOfLine = (lineLength + 3) / 4 * 3;
  std::string text;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytesOfLine, bytes.size())))
    text.append(indent).append(base::base64Text(bytes.substr(0, bytesOfLine))).append("\n");
  return text;
}

}  // namespace ORLFoundation::internal::plist
