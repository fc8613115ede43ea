
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>

#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// The English sentence of a rule. The words are fixed; nothing here is localized.
namespace ORLFoundation {
namespace {

using Text = std::optional<std::string>;

constexpr std::string_view kMonths[] = {"January",   "February", "March",    "April",
                                        "May",       "June",     "July",     "August",
                                        "September", "October",  "November", "December"};

std::string headText(ORLFDateRecurrenceFrequency frequency, NSInteger interval) {
  const internal::recurrence::ORLFFrequencyFacts* const facts =
      internal::recurrence::factsOf(frequency);
  if (!facts) ORLFFatalError("Fatal error", "ORLFoundation/DateRecurrenceRule", __LINE__);
  std::string text = "repeats ";
  if (interval == 1) return text.append(facts->description);
  return text.append("every ")
      .append(std::to_string(interval))
      .append(" ")
      .append(facts->word)
      .append("s");
}

std::string monthWord(NSInteger month) {
  if (month < 1 || month > 12) {
    ORLFFatalError("Fatal error", "ORLFoundation/DateRecurrenceRule", __LINE__);
  }
  return std::string(kMonths[month - 1]);
}

// Only 11, 12 and 13 are set apart, so that 111 reads 111st; negative numbers read -1th.
std::string ordinal(NSInteger number) {
  constexpr std::string_view kSuffixes[] = {"th", "st", "nd", "rd"};
  const auto last = static_cast<NSUInteger>(number % 10);
  const bool teen = number == 11 || number == 12 || number == 13;
  const bool own = !teen && last < std::size(kSuffixes);
  return std::to_string(number) + std::string(kSuffixes[own ? last : 0]);
}

// The mark before an item, which tells the last item of a list by its value: one that equals the
// last is set off by "and" wherever it stands.
std::string_view mark(bool first, bool equalsLast) {
  if (first) return "";
  return equalsLast ? ", and " : ", ";
}

template <class Word>
Text listText(const ORLFDateRecurrenceRule::Integers& values, Word&& word) {
  if (!values || values->empty()) return std::nullopt;
  std::string text;
  for (const NSInteger value : *values) {
    text += mark(text.empty(), value == values->back());
    text += word(value);
  }
  return text;
}

// What stands before each weekday of a group, its blank included.
std::string prefixText(NSInteger weekNumber, bool onlyGroup) {
  const std::string word(ORLFDateRecurrenceDayOfWeek::stringForWeekNumber(weekNumber));
  if (weekNumber != 0) return "the " + word + " ";
  return onlyGroup ? "" : word + " ";
}

void appendPiece(std::string& tail, const Text& piece, std::string_view between,
                 std::string_view alone) {
  if (!piece) return;
  tail += tail.empty() ? alone : between;
  tail += *piece;
}

}  // namespace

Text ORLFDateRecurrenceRule::partialDescriptionForMonthsOfYear(const Integers& months) {
  return listText(months, monthWord);
}

Text ORLFDateRecurrenceRule::partialDescriptionForDaysOfTheMonth(const Integers& days) {
  return listText(days, ordinal);
}

Text ORLFDateRecurrenceRule::partialDescriptionForDaysOfTheWeek(const DaysOfTheWeek& days) {
  if (!days || days->empty()) return std::nullopt;
  std::map<NSInteger, std::vector<std::string_view>> groups;
  for (const auto& day : *days) {
    groups[day->weekNumber()].push_back(
        ORLFDateRecurrenceDayOfWeek::nameForWeekday(day->dayOfTheWeek()));
  }
  const auto& [lastNumber, lastWords] = *groups.rbegin();
  std::string text;
  for (const auto& [number, words] : groups) {
    const std::string prefix = prefixText(number, groups.size() == 1);
    for (const std::string_view word : words) {
      text += mark(text.empty(), number == lastNumber && word == lastWords.back());
      text.append(prefix).append(word);
    }
  }
  return text;
}

std::string ORLFDateRecurrenceRule::humanReadableDescription() const {
  std::string tail;
  appendPiece(tail, partialDescriptionForDaysOfTheWeek(daysOfTheWeek()), "", "on ");
  appendPiece(tail, partialDescriptionForDaysOfTheMonth(daysOfTheMonth()), " on the ", "on the ");
  appendPiece(tail, partialDescriptionForMonthsOfYear(monthsOfTheYear()), " of ", "in ");
  const std::string head = headText(frequency(), interval());
  return tail.empty() ? head + "." : head + " " + tail;
}

}  // namespace ORLFoundation
