#include "progress/progress_text.h"

#include <ORLFoundation/platform/base/UTF8.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "cli/message_text.h"

namespace orlftool {
namespace {

using ORLFoundation::internal::base::firstUTF8Character;

constexpr std::size_t kLeastMessage = 8;
constexpr std::string_view kSpinner = R"(|/-\)";
constexpr std::string_view kCut = "...";

std::size_t columnsOfCharacter(char32_t codePoint) {
  const auto c = static_cast<UChar32>(codePoint);
  constexpr auto kMarks = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
  if ((U_GET_GC_MASK(c) & kMarks) != 0) return 0;
  const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// The beginning of a text that takes no more than so many columns, and how many it takes.
std::pair<std::string_view, std::size_t> beginningOf(std::string_view text, std::size_t columns) {
  std::size_t length = 0;
  std::size_t taken = 0;
  while (length < text.size()) {
    const auto character = firstUTF8Character(text.substr(length));
    const std::size_t width = columnsOfCharacter(character.codePoint);
    if (taken + width > columns) break;
    taken += width;
    length += character.length;
  }
  return {text.substr(0, length), taken};
}

/// Exactly so many columns: cut with three points, or filled with blanks.
std::string fitted(std::string_view text, std::size_t columns) {
  const auto [whole, taken] = beginningOf(text, columns);
  if (whole.size() == text.size()) return std::string(whole) + std::string(columns - taken, ' ');
  if (columns <= kCut.size()) return std::string(kCut.substr(0, columns));
  const auto [begun, used] = beginningOf(text, columns - kCut.size());
  return std::string(begun) + std::string(kCut) + std::string(columns - kCut.size() - used, ' ');
}

/// Broken bytes become question marks, control characters blanks.
std::string shownMessage(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const auto character = firstUTF8Character(text);
    const bool isControl = character.codePoint >= 0x80 && character.codePoint < 0xA0;
    shown += character.isBroken || isControl ? "?" : text.substr(0, character.length);
    text.remove_prefix(character.length);
  }
  return oneLine(shown);
}

std::string withOneDigit(double number, std::string_view unit) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.1f ", number);
  return std::string(text.data()).append(unit);
}

std::string bytesText(double bytes) {
  constexpr std::array<std::string_view, 4> kUnits{"kB", "MB", "GB", "TB"};
  if (!(bytes >= 1000)) return std::to_string(static_cast<int>(bytes >= 0 ? bytes : 0)) + " B";
  std::size_t unit = 0;
  double shown = bytes / 1000;
  for (; shown >= 999.95 && unit + 1 < kUnits.size(); ++unit) shown /= 1000;
  return withOneDigit(std::min(shown, 1e9), kUnits.at(unit));
}

std::string amountText(double amount, ProgressUnit unit) {
  if (unit == ProgressUnit::bytes) return bytesText(amount);
  constexpr double kMost = 1e15;
  const double shown = amount >= 0 ? std::min(amount, kMost) : 0;
  return std::to_string(static_cast<std::int64_t>(shown));
}

std::string rateText(const ProgressView& view) {
  return view.rate ? amountText(*view.rate, view.unit) + "/s" : "";
}

std::string barText(int percent, std::size_t inside) {
  const std::size_t full = inside * static_cast<std::size_t>(percent) / 100;
  return "[" + std::string(full, '#') + std::string(inside - full, '-') + "]";
}

}  // namespace

std::optional<int> ProgressView::percent() const {
  if (isIndeterminate || !(maximum > 0) || std::isinf(maximum) || std::isnan(value))
    return std::nullopt;
  return static_cast<int>(std::clamp(value / maximum, 0.0, 1.0) * 100);
}

std::size_t columnsOfText(std::string_view text) {
  std::size_t columns = 0;
  for (; !text.empty(); text.remove_prefix(firstUTF8Character(text).length))
    columns += columnsOfCharacter(firstUTF8Character(text).codePoint);
  return columns;
}

std::string progressLine(const ProgressView& view, std::size_t columns, std::uint64_t turn) {
  const std::size_t room = columns > 0 ? columns - 1 : 0;
  const auto percent = view.percent();
  std::string tail;
  std::string bar;
  if (percent) {
    const std::string digits = std::to_string(*percent);
    tail = std::string(5 - digits.size() - 1, ' ') + digits + "%";
    bar = " " + barText(*percent, std::clamp<std::size_t>(room / 4, 8, 40));
  } else if (view.value > 0) {
    tail = " " + amountText(view.value, view.unit);
  }
  std::string rate = rateText(view);
  if (!rate.empty()) rate.insert(0, "  ");
  const std::string spinner = std::string(1, kSpinner[turn % kSpinner.size()]) + " ";
  const auto leaves = [&] {
    const std::size_t taken = spinner.size() + bar.size() + tail.size() + rate.size();
    return room > taken ? room - taken : 0;
  };
  if (leaves() < kLeastMessage) rate.clear();
  if (leaves() < kLeastMessage) bar.clear();
  if (spinner.size() + tail.size() > room) return fitted(tail, std::min(room, tail.size()));
  return spinner + fitted(shownMessage(view.message), leaves()) + bar + tail + rate;
}

std::string plainProgressLine(const ProgressView& view) {
  std::string line = shownMessage(view.message);
  const auto add = [&line](const std::string& part) { line += (line.empty() ? "" : ", ") + part; };
  if (const auto percent = view.percent()) {
    add(std::to_string(*percent) + "%");
    add(amountText(view.value, view.unit) + " of " + amountText(view.maximum, view.unit));
  } else if (view.value > 0) {
    add(amountText(view.value, view.unit));
  }
  if (view.rate) add(rateText(view));
  add(std::to_string(static_cast<std::int64_t>(view.seconds)) + " s");
  return line;
}

}  // namespace orlftool
